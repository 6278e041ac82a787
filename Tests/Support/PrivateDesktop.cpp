#include "Tests/Support/PrivateDesktop.h"

namespace zephlin::test {

PrivateDesktop::PrivateDesktop(SessionBus sessionBus, Application application)
    : wantedBus_(sessionBus), wantedApplication_(application) {}

PrivateDesktop::~PrivateDesktop() = default;

void PrivateDesktop::SetUp() {
  folder_ = std::make_unique<QTemporaryDir>();
  xServer_.emplace();
  systemBus_.emplace();
  if (wantedBus_ == SessionBus::Present) {
    sessionBus_.emplace();
  }
  qputenv("DBUS_SYSTEM_BUS_ADDRESS", systemBus_->address().c_str());
  qputenv("DBUS_SESSION_BUS_ADDRESS",
          sessionBus_ ? sessionBus_->address().c_str() : "unix:path=/nonexistent");
  qputenv("XDG_RUNTIME_DIR", folder_->path().toUtf8());
  qputenv("QT_QPA_PLATFORM", "xcb");
  // What the desktop that the test is started on would add.
  qunsetenv("QT_QPA_PLATFORMTHEME");
  qunsetenv("XDG_CURRENT_DESKTOP");
  if (wantedApplication_ == Application::Present) {
    static int count = 1;
    static char name[] = "Zephlin";
    static char* arguments[] = {name, nullptr};
    application_ = std::make_unique<QApplication>(count, arguments);
  }
}

void PrivateDesktop::TearDown() {
  application_.reset();
  sessionBus_.reset();
  systemBus_.reset();
  xServer_.reset();
  folder_.reset();
}

}  // namespace zephlin::test
