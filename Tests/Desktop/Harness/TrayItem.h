#pragma once

#include <QImage>
#include <memory>
#include <string>

#include "Tests/Desktop/Harness/PrivateBus.h"
#include "Tests/Desktop/Harness/TrayMenu.h"

namespace zephlin::test {

/// A status notifier item on the session bus, used as a host uses it.
class TrayItem {
 public:
  /// Waits until the process has an item.
  TrayItem(PrivateBus& sessionBus, pid_t process);

  [[nodiscard]] std::string toolTip() const;
  [[nodiscard]] std::string title() const;
  [[nodiscard]] std::string iconName() const;
  [[nodiscard]] std::unique_ptr<TrayMenu> menu() const;

 private:
  [[nodiscard]] QVariant property(const char* name) const;

  QDBusConnection bus_;
  QString service_;
  QString path_;
};

/// Who takes items.
inline const QString watcherName = "org.kde.StatusNotifierWatcher";

/// Whether anyone takes items.
bool isTrayThere(PrivateBus& sessionBus);

/// The items that the watcher knows; empty where there is no watcher.
QStringList registeredItems(PrivateBus& sessionBus);

}  // namespace zephlin::test
