#include "Tests/Support/BusConnection.h"

#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QUuid>
#include <stdexcept>

#include "Tests/Support/QtLoop.h"

namespace zephlin::test {
namespace {

QDBusMessage messageFor(const Method& method, const QVariantList& arguments) {
  QDBusMessage message =
      QDBusMessage::createMethodCall(method.service, method.path, method.interface, method.name);
  message.setArguments(arguments);
  return message;
}

}  // namespace

BusConnection::BusConnection(const QString& address)
    : connection_(QDBusConnection::connectToBus(address, QUuid::createUuid().toString())) {
  if (!connection_.isConnected()) {
    throw std::runtime_error("no bus at " + address.toStdString());
  }
}

BusConnection::~BusConnection() {
  QDBusConnection::disconnectFromBus(connection_.name());
}

bool BusConnection::hasName(const QString& name) const {
  return connection_.interface()->isServiceRegistered(name);
}

pid_t BusConnection::ownerOf(const QString& name) const {
  return static_cast<pid_t>(connection_.interface()->servicePid(name).value());
}

QVariantList BusConnection::call(const Method& method, const QVariantList& arguments) const {
  const QDBusPendingCall pending = connection_.asyncCall(messageFor(method, arguments));
  if (!eventually([&pending] { return pending.isFinished(); }) || pending.isError()) {
    throw std::runtime_error((method.name + ": " + pending.error().message()).toStdString());
  }
  return pending.reply().arguments();
}

QVariant BusConnection::property(const Method& method) const {
  const QVariantList values =
      call({method.service, method.path, "org.freedesktop.DBus.Properties", "Get"},
           {method.interface, method.name});
  return qvariant_cast<QDBusVariant>(values.at(0)).variant();
}

void BusConnection::send(const Method& method, const QVariantList& arguments) const {
  connection_.send(messageFor(method, arguments));
}

QString sessionBusAddress() {
  return qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
}

}  // namespace zephlin::test
