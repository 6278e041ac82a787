#pragma once

#include <QString>
#include <optional>

namespace zephlin {

/// A status item as one kind of tray shows it. Destroying it removes it from the tray. Main thread.
class TrayEntry {
 public:
  virtual ~TrayEntry() = default;
  /// An icon of the desktop's theme; absent for a blank one.
  virtual void setIconName(const std::optional<QString>& iconName) = 0;
  virtual void setToolTip(const QString& text) = 0;
  /// Shows the entries that the menu has now.
  virtual void showMenu() = 0;
  /// To be called when everything is set, as panels read it at once; and again when a
  /// StatusNotifier host comes back.
  virtual void appear() = 0;
};

}  // namespace zephlin
