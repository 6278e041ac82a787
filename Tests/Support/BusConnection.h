#pragma once

#include <sys/types.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QString>
#include <QUuid>
#include <QVariantList>
#include <stdexcept>

#include "Tests/Support/QtLoop.h"

namespace zephlin::test {

/// A method of an object on a bus.
struct Method {
  QString service;
  QString path;
  QString interface;
  QString name;
};

inline QDBusMessage messageFor(const Method& method, const QVariantList& arguments) {
  QDBusMessage message =
      QDBusMessage::createMethodCall(method.service, method.path, method.interface, method.name);
  message.setArguments(arguments);
  return message;
}

/// A connection of the test's own to a bus, closed at the end. Throws std::runtime_error if the bus
/// cannot be reached. Calls handle this thread's Qt events until the reply is there and throw
/// std::runtime_error for an error: what is called may be in this very thread.
class BusConnection {
 public:
  explicit BusConnection(const QString& address)
      : connection_(QDBusConnection::connectToBus(address, QUuid::createUuid().toString())) {
    if (!connection_.isConnected()) {
      throw std::runtime_error("no bus at " + address.toStdString());
    }
  }

  BusConnection(const BusConnection&) = delete;
  BusConnection& operator=(const BusConnection&) = delete;
  ~BusConnection() { QDBusConnection::disconnectFromBus(connection_.name()); }

  [[nodiscard]] QDBusConnection& get() { return connection_; }

  [[nodiscard]] bool hasName(const QString& name) const {
    return connection_.interface()->isServiceRegistered(name);
  }

  /// The process that has a name.
  [[nodiscard]] pid_t ownerOf(const QString& name) const {
    return static_cast<pid_t>(connection_.interface()->servicePid(name).value());
  }

  QVariantList call(const Method& method, const QVariantList& arguments = {}) const {
    const QDBusPendingCall pending = connection_.asyncCall(messageFor(method, arguments));
    if (!eventually([&pending] { return pending.isFinished(); }) || pending.isError()) {
      throw std::runtime_error((method.name + ": " + pending.error().message()).toStdString());
    }
    return pending.reply().arguments();
  }

  /// A property, by org.freedesktop.DBus.Properties; `method.name` is the property's.
  [[nodiscard]] QVariant property(const Method& method) const {
    const QVariantList values =
        call({method.service, method.path, "org.freedesktop.DBus.Properties", "Get"},
             {method.interface, method.name});
    return qvariant_cast<QDBusVariant>(values.at(0)).variant();
  }

  /// Calls without waiting for the reply.
  void send(const Method& method, const QVariantList& arguments) const {
    connection_.send(messageFor(method, arguments));
  }

 private:
  QDBusConnection connection_;
};

/// The address of this process's session bus.
inline QString sessionBusAddress() {
  return qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
}

}  // namespace zephlin::test
