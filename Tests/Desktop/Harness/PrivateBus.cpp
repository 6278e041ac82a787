#include "Tests/Desktop/Harness/PrivateBus.h"

#include <QDBusConnectionInterface>
#include <stdexcept>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

QDBusConnection connectTo(const std::string& address, const QString& name) {
  QDBusConnection connection(name);
  waitUntil("a bus at " + address, [&] {
    connection = QDBusConnection::connectToBus(QString::fromStdString(address), name);
    if (!connection.isConnected()) {
      QDBusConnection::disconnectFromBus(name);
    }
    return connection.isConnected();
  });
  return connection;
}

}  // namespace

PrivateBus::PrivateBus(const std::string& folder, const std::string& name,
                       const Environment& environment)
    : name_(QString::fromStdString(folder + name)),
      address_("unix:path=" + folder + "/" + name),
      daemon_({"/usr/bin/dbus-daemon", "--session", "--nofork", "--address=" + address_},
              environment, folder + "/" + name + ".log"),
      connection_(connectTo(address_, name_)) {}

PrivateBus::~PrivateBus() {
  QDBusConnection::disconnectFromBus(name_);
}

bool PrivateBus::hasName(const QString& name) const {
  return connection_.interface()->isServiceRegistered(name);
}

QVariantList call(const QDBusConnection& connection, const Method& method,
                  const QVariantList& arguments) {
  QDBusMessage message =
      QDBusMessage::createMethodCall(method.service, method.path, method.interface, method.name);
  message.setArguments(arguments);
  const QDBusMessage reply = connection.call(message);
  if (reply.type() != QDBusMessage::ReplyMessage) {
    throw std::runtime_error((method.name + ": " + reply.errorMessage()).toStdString());
  }
  return reply.arguments();
}

QVariant property(const QDBusConnection& connection, const Method& method) {
  const QVariantList values =
      call(connection, {method.service, method.path, "org.freedesktop.DBus.Properties", "Get"},
           {method.interface, method.name});
  return qvariant_cast<QDBusVariant>(values.at(0)).variant();
}

}  // namespace zephlin::test
