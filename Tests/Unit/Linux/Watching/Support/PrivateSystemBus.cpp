#include "Tests/Unit/Linux/Watching/Support/PrivateSystemBus.h"

#include <QDBusMessage>
#include <QUuid>
#include <stdexcept>

namespace zephlin::test {

PrivateSystemBus::PrivateSystemBus()
    : daemon_({"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address",
               "--address=" + address().toStdString()}) {}

FakeLogind::FakeLogind(const QString& busName)
    : connection_(QDBusConnection::connectToBus(PrivateSystemBus::address(),
                                                QUuid::createUuid().toString())) {
  if (!connection_.registerService(busName)) {
    throw std::runtime_error("the name is not to be had on the bus");
  }
}

FakeLogind::~FakeLogind() {
  QDBusConnection::disconnectFromBus(connection_.name());
}

void FakeLogind::prepareForSleep(bool begins) {
  auto message = QDBusMessage::createSignal("/org/freedesktop/login1",
                                            "org.freedesktop.login1.Manager", "PrepareForSleep");
  message << begins;
  connection_.send(message);
}

}  // namespace zephlin::test
