#include "Platform/Linux/LinuxApplication.h"

#include <QIcon>
#include <QMetaObject>
#include <QWidget>
#include <utility>

#include "Platform/Linux/Display.h"

namespace zephlin {

namespace {

/// Qt ends the process where it finds no display, unless it is told not to look for one.
int& withReachableDisplay(int& argc) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !isDisplayReachable()) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  return argc;
}

}  // namespace

LinuxApplication::LinuxApplication(int& argc, char** argv)
    : application_(withReachableDisplay(argc), argv) {
  QApplication::setApplicationName("Zephlin");
  QApplication::setApplicationVersion(ZEPHLIN_VERSION);
  QApplication::setDesktopFileName("com.quorvenel.zephlin");
  QApplication::setWindowIcon(QIcon::fromTheme(QApplication::desktopFileName()));
  QApplication::setQuitOnLastWindowClosed(false);
}

bool LinuxApplication::isDisplayed() const {
  return QApplication::platformName() != "offscreen";
}

void LinuxApplication::reopen() {
  if (const auto delegate = delegate_.lock()) {
    delegate->applicationShouldHandleReopen();
  }
}

void LinuxApplication::setDelegate(std::weak_ptr<ApplicationDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void LinuxApplication::setActivationPolicy(ActivationPolicy /*policy*/) {}

void LinuxApplication::setMainMenu(std::shared_ptr<Menu> menu) {
  services_.setMainMenu(std::move(menu));
}

void LinuxApplication::activateIgnoringOtherApps() {
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    if (widget->isWindow() && widget->isVisible()) {
      widget->raise();
      widget->activateWindow();
    }
  }
}

void LinuxApplication::run() {
  QMetaObject::invokeMethod(
      &application_,
      [this] {
        if (const auto delegate = delegate_.lock()) {
          delegate->applicationDidFinishLaunching();
        }
      },
      Qt::QueuedConnection);
  QApplication::exec();
  services_.loopHasEnded();
}

void LinuxApplication::terminate() {
  QApplication::exit(0);
}

}  // namespace zephlin
