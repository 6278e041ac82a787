#pragma once

#include <QDBusConnection>
#include <QString>

#include "Tests/Support/Daemon.h"

namespace zephlin::test {

/// A message bus at the process's address of the system bus. It ends with the test.
class PrivateSystemBus {
 public:
  /// Throws std::runtime_error where it does not start.
  PrivateSystemBus();

  [[nodiscard]] static QString address() { return qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"); }

 private:
  Daemon daemon_;
};

/// A program on a bus that may have logind's name and sends its signals.
class FakeLogind {
 public:
  explicit FakeLogind(const QString& busName = "org.freedesktop.login1");
  FakeLogind(const FakeLogind&) = delete;
  FakeLogind& operator=(const FakeLogind&) = delete;
  ~FakeLogind();

  void prepareForSleep(bool begins);

 private:
  QDBusConnection connection_;
};

}  // namespace zephlin::test
