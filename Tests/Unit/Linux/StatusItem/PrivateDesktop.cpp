#include "Tests/Unit/Linux/StatusItem/PrivateDesktop.h"

#include <QDeadlineTimer>
#include <QTimer>
#include <chrono>

namespace zephlin::test {

PrivateDesktop::PrivateDesktop(SessionBus sessionBus) {
  if (sessionBus == SessionBus::Present) {
    bus_.emplace();
  }
  qputenv("DBUS_SESSION_BUS_ADDRESS", bus_ ? bus_->address().c_str() : "unix:path=/nonexistent");
  qputenv("DISPLAY", (":" + display_.address()).c_str());
  qputenv("XDG_RUNTIME_DIR", runtimeDirectory_.path().toUtf8());
  qputenv("QT_QPA_PLATFORM", "xcb");
  // Without what the desktop that the test is started on would add.
  qunsetenv("QT_QPA_PLATFORMTHEME");
  qunsetenv("XDG_CURRENT_DESKTOP");
  static int count = 1;
  static char name[] = "Zephlin";
  static char* arguments[] = {name, nullptr};
  application_ = std::make_unique<QApplication>(count, arguments);
}

PrivateDesktop::~PrivateDesktop() = default;

bool waitUntil(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(std::chrono::minutes(1));
  QTimer lookAgain;
  lookAgain.start(std::chrono::milliseconds(5));
  while (!condition()) {
    if (deadline.hasExpired()) {
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

}  // namespace zephlin::test
