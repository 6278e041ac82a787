#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantList>
#include <string>

#include "Tests/Desktop/Harness/Program.h"

namespace zephlin::test {

/// A D-Bus daemon with an empty bus, and the test's connection to it.
class PrivateBus {
 public:
  /// Listens in the folder, under a name that also names the connection. Programs that the daemon
  /// activates have its environment.
  PrivateBus(const std::string& folder, const std::string& name, const Environment& environment);
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;
  ~PrivateBus();

  [[nodiscard]] const std::string& address() const { return address_; }
  [[nodiscard]] QDBusConnection& connection() { return connection_; }

  [[nodiscard]] bool hasName(const QString& name) const;

 private:
  QString name_;
  std::string address_;
  Program daemon_;
  QDBusConnection connection_;
};

/// One method of an object on a bus.
struct Method {
  QString service;
  QString path;
  QString interface;
  QString name;
};

/// Calls and returns the reply's values. Throws std::runtime_error for an error.
QVariantList call(const QDBusConnection& connection, const Method& method,
                  const QVariantList& arguments = {});

/// A property, by org.freedesktop.DBus.Properties; `method.name` is the property's.
QVariant property(const QDBusConnection& connection, const Method& method);

}  // namespace zephlin::test
