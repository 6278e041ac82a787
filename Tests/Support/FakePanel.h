#pragma once

#include <QObject>
#include <QString>
#include <QThread>
#include <atomic>

#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

/// What a panel offers to items on the session bus. Lives on a thread of its own, since Qt asks it
/// questions and waits for the answers.
class FakeWatcher final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
  Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)

 public:
  FakeWatcher(QDBusConnection bus, bool hasHost) : bus_(std::move(bus)), hasHost_(hasHost) {}

  bool isHostRegistered();
  void appear();
  void disappear();
  void registerHost();
  [[nodiscard]] QString item() const { return item_; }

  std::atomic<int> timesAskedForHost = 0;
  std::atomic<int> registrations = 0;

 public Q_SLOTS:
  Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service);

 Q_SIGNALS:
  Q_SCRIPTABLE void StatusNotifierHostRegistered();

 private:
  QDBusConnection bus_;
  bool hasHost_;
  QString item_;
};

/// A panel that exists from construction to destruction.
class FakePanel {
 public:
  enum class Host { Present, Absent };

  explicit FakePanel(Host host = Host::Present);
  FakePanel(const FakePanel&) = delete;
  FakePanel& operator=(const FakePanel&) = delete;
  ~FakePanel();

  void registerHost();
  [[nodiscard]] int timesAskedForHost() const { return watcher_->timesAskedForHost; }
  /// How many times an item has made itself known.
  [[nodiscard]] int registrations() const { return watcher_->registrations; }
  /// The bus name of the item that did so last.
  [[nodiscard]] QString item() const;
  /// Whether that item is still there.
  [[nodiscard]] bool isItemOnBus() const { return bus_.hasName(item()); }

 private:
  BusConnection bus_{sessionBusAddress()};
  QThread thread_;
  FakeWatcher* watcher_;
};

}  // namespace zephlin::test
