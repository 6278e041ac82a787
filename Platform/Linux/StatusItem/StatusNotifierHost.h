#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <functional>

namespace zephlin {

/// Tells when a panel that shows StatusNotifier items is there. Main thread.
/// Protocol: freedesktop.org, StatusNotifierWatcher.
class StatusNotifierHost final : public QObject {
  Q_OBJECT

 public:
  /// `registered` is called from the event loop, whenever such a panel was found or has come.
  explicit StatusNotifierHost(std::function<void()> registered);

  /// Whether there can be one: there is a session bus.
  [[nodiscard]] bool isPossible() const { return bus_.isConnected(); }

 private Q_SLOTS:
  void hostRegistered() const { registered_(); }

 private:
  void askWatcher();

  std::function<void()> registered_;
  QDBusConnection bus_;
  QDBusServiceWatcher watcherService_;
};

}  // namespace zephlin
