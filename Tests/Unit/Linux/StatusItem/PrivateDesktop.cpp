#include "Tests/Unit/Linux/StatusItem/PrivateDesktop.h"

#include <sys/prctl.h>

#include <QDeadlineTimer>
#include <QTimer>
#include <chrono>
#include <csignal>
#include <stdexcept>

namespace zephlin::test {

namespace {

constexpr std::chrono::minutes longEnough{1};

}  // namespace

Daemon::Daemon(const QString& program, const QStringList& arguments) {
  process_.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
  process_.setStandardErrorFile(QProcess::nullDevice());
  process_.start(program, arguments);
  const QDeadlineTimer deadline(longEnough);
  while (!process_.canReadLine()) {
    if (!process_.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
      throw std::runtime_error("no answer from " + program.toStdString());
    }
  }
  address_ = process_.readLine().trimmed();
}

Daemon::~Daemon() {
  process_.kill();
  process_.waitForFinished();
}

PrivateDesktop::PrivateDesktop(SessionBus sessionBus)
    : display_("Xvfb", {"-displayfd", "1", "-screen", "0", "640x480x24", "-nolisten", "tcp"}) {
  if (sessionBus == SessionBus::Present) {
    bus_.emplace("dbus-daemon", QStringList{"--session", "--nofork", "--print-address=1"});
  }
  qputenv("DBUS_SESSION_BUS_ADDRESS", bus_ ? bus_->address() : "unix:path=/nonexistent");
  qputenv("DISPLAY", ":" + display_.address());
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
  const QDeadlineTimer deadline(longEnough);
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
