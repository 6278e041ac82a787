#include "Tests/Support/FakeLogind.h"

#include <stdexcept>

namespace zephlin::test {

QString systemBusAddress() {
  return qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
}

FakeLogind::FakeLogind(const QString& busAddress, const QString& name) : bus_(busAddress) {
  if (!bus_.get().registerService(name)) {
    throw std::runtime_error("the bus has given this name to someone else");
  }
}

void FakeLogind::prepareForSleep(bool begins) {
  auto message = QDBusMessage::createSignal("/org/freedesktop/login1",
                                            "org.freedesktop.login1.Manager", "PrepareForSleep");
  message << begins;
  bus_.get().send(message);
}

}  // namespace zephlin::test
