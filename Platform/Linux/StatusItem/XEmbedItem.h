#pragma once

#include <QSystemTrayIcon>

#include "Platform/Linux/StatusItem/QtMenuTranslation.h"
#include "Platform/Linux/StatusItem/TrayEntry.h"
#include "Platform/Linux/StatusItem/XEmbedTray.h"

namespace zephlin {

/// The status item as Qt's window in an XEmbed tray, which Qt docks again when the tray restarts.
/// Only while no StatusNotifier host is there: Qt 6.4 asks for one when a process makes its first
/// QSystemTrayIcon, and uses no XEmbed tray if there is. Main thread.
class XEmbedItem final : public TrayEntry {
 public:
  /// The tray and the menu outlive the item.
  XEmbedItem(const XEmbedTray& tray, StatusMenu& menu);

  /// Draws the icon in the colour that the tray has now.
  void setIconName(const std::optional<QString>& iconName) override;
  void setToolTip(const QString& text) override { icon_.setToolTip(text); }
  void showMenu() override { translation_.show(); }
  void appear() override;

 private:
  void drawIcon();

  const XEmbedTray& tray_;
  QtMenuTranslation translation_;
  QSystemTrayIcon icon_;
  std::optional<QString> iconName_;
};

}  // namespace zephlin
