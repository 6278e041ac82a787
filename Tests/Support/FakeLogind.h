#pragma once

#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

/// The address of this process's system bus.
QString systemBusAddress();

/// A program on a bus with systemd-logind's name, or another one, that sends logind's signals.
class FakeLogind {
 public:
  explicit FakeLogind(const QString& busAddress = systemBusAddress(),
                      const QString& name = "org.freedesktop.login1");

  /// Announces that the machine is about to sleep, or has woken.
  void prepareForSleep(bool begins);

 private:
  BusConnection bus_;
};

}  // namespace zephlin::test
