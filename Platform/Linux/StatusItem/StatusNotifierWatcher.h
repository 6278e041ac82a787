#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <functional>

namespace zephlin {

/// The desktop's register of StatusNotifier items, and whether a panel (a "host") shows them. Main
/// thread. Protocol: freedesktop.org, StatusNotifierWatcher.
class StatusNotifierWatcher final : public QObject {
  Q_OBJECT

 public:
  /// `hostsChanged` is called from the event loop when the first host of a register has come, and
  /// when the register has gone.
  explicit StatusNotifierWatcher(std::function<void()> hostsChanged);

  /// Whether there can be hosts: there is a session bus.
  [[nodiscard]] bool isPossible() const { return bus_.isConnected(); }
  [[nodiscard]] bool hasHost() const { return hasHost_; }
  /// Registers the item that is on a connection of its own. To be called for each register that
  /// comes.
  static void registerItem(const QDBusConnection& item);

 private Q_SLOTS:
  void hostRegistered() { setHasHost(true); }

 private:
  void ask();
  void setHasHost(bool hasHost);

  std::function<void()> hostsChanged_;
  QDBusConnection bus_;
  QDBusServiceWatcher service_;
  bool hasHost_ = false;
};

}  // namespace zephlin
