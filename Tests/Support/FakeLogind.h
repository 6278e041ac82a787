#pragma once

#include <stdexcept>

#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

/// The address of this process's system bus.
inline QString systemBusAddress() {
  return qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
}

/// A program on a bus with systemd-logind's name, or another one, that sends logind's signals.
class FakeLogind {
 public:
  explicit FakeLogind(const QString& busAddress = systemBusAddress(),
                      const QString& name = "org.freedesktop.login1")
      : bus_(busAddress) {
    if (!bus_.get().registerService(name)) {
      throw std::runtime_error("the bus has given this name to someone else");
    }
  }

  /// Announces that the machine is about to sleep, or has woken.
  void prepareForSleep(bool begins) {
    auto message = QDBusMessage::createSignal("/org/freedesktop/login1",
                                              "org.freedesktop.login1.Manager", "PrepareForSleep");
    message << begins;
    bus_.get().send(message);
  }

 private:
  BusConnection bus_;
};

}  // namespace zephlin::test
