#pragma once

#include <QString>
#include <string>

#include "Platform/Linux/LinuxApplication.h"
#include "Platform/Linux/Session/DesktopNotification.h"
#include "Platform/Window.h"

namespace zephlin {

/// Shows the application's state where the status item does not: when the user asks for it, and
/// once on a desktop without a tray. Does nothing without a display. Main thread.
class StatusReporter {
 public:
  /// Both outlive the reporter.
  StatusReporter(LinuxApplication& application, AlertPresenter& alerts);

  /// Shows the state in a notification, or in an alert if the desktop has no notifications.
  void report();
  /// To be called when it turns out that no tray shows the status item (false), and when one does
  /// after all (true). The first time, a notification says how to reach the application without
  /// it, unless a window of it is open; a tray takes that away.
  void trayChanged(bool showsItem);
  /// Takes the notification away.
  void withdraw() { notification_.withdraw(); }
  /// The user has switched the application on or off from outside. Without a tray, they see
  /// nothing of it otherwise.
  void reportSwitch();

 private:
  void show(const std::string& status, const QString& more, std::function<void()> failed);
  void showAlert(const std::string& status);

  LinuxApplication& application_;
  AlertPresenter& alerts_;
  DesktopNotification notification_;
  bool isTrayMissing_ = false;
  bool hasGivenAdvice_ = false;
};

}  // namespace zephlin
