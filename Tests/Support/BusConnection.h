#pragma once

#include <sys/types.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariantList>

namespace zephlin::test {

/// A method of an object on a bus.
struct Method {
  QString service;
  QString path;
  QString interface;
  QString name;
};

/// A connection of the test's own to a bus, closed at the end. Throws std::runtime_error if the bus
/// cannot be reached. Calls handle this thread's Qt events until the reply is there and throw
/// std::runtime_error for an error: what is called may be in this very thread.
class BusConnection {
 public:
  explicit BusConnection(const QString& address);
  BusConnection(const BusConnection&) = delete;
  BusConnection& operator=(const BusConnection&) = delete;
  ~BusConnection();

  [[nodiscard]] QDBusConnection& get() { return connection_; }

  [[nodiscard]] bool hasName(const QString& name) const;
  /// The process that has a name.
  [[nodiscard]] pid_t ownerOf(const QString& name) const;
  QVariantList call(const Method& method, const QVariantList& arguments = {}) const;
  /// A property, by org.freedesktop.DBus.Properties; `method.name` is the property's.
  [[nodiscard]] QVariant property(const Method& method) const;
  /// Calls without waiting for the reply.
  void send(const Method& method, const QVariantList& arguments) const;

 private:
  QDBusConnection connection_;
};

/// The address of this process's session bus.
QString sessionBusAddress();

}  // namespace zephlin::test
