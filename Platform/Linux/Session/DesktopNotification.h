#pragma once

#include <QString>
#include <functional>
#include <memory>

namespace zephlin {

class NotificationServer;

/// The one notification that the application has on the desktop at a time (org.freedesktop
/// .Notifications). Nothing here waits for the desktop's answers. Main thread, while the
/// QApplication lives.
class DesktopNotification {
 public:
  struct Content {
    QString summary;
    QString body;
    /// What a click on it does, in a few words; the desktop may show them.
    QString action;
  };

  /// `clicked` is called from the event loop, with the right to bring a window to the front if the
  /// desktop has given one (setActivationToken). Not every desktop lets a notification be clicked.
  explicit DesktopNotification(std::function<void(const QString& activationToken)> clicked);
  DesktopNotification(const DesktopNotification&) = delete;
  DesktopNotification& operator=(const DesktopNotification&) = delete;
  ~DesktopNotification();

  /// Shows it, in place of the one that is still shown. Calls `failed` from the event loop if the
  /// desktop has no notifications.
  void show(const Content& content, std::function<void()> failed);
  /// Takes it off the desktop, also if the desktop has yet to show it, or if the process ends next.
  void withdraw();

 private:
  std::unique_ptr<NotificationServer> server_;
};

}  // namespace zephlin
