#include "Platform/Linux/StatusItem/XEmbedItem.h"

#include <QCursor>
#include <QIcon>
#include <QPixmap>

#include "Platform/Linux/StatusItem/SymbolIcons.h"

namespace zephlin {

namespace {

/// Keeps the place of an item without an image.
QIcon blankIcon() {
  QPixmap nothing(22, 22);
  nothing.fill(Qt::transparent);
  return QIcon(nothing);
}

}  // namespace

XEmbedItem::XEmbedItem(const XEmbedTray& tray, StatusMenu& menu) : tray_(tray), translation_(menu) {
  icon_.setContextMenu(&translation_.qtMenu());
  QObject::connect(&icon_, &QSystemTrayIcon::activated, &icon_, [this](auto reason) {
    if (reason == QSystemTrayIcon::Trigger) {
      translation_.qtMenu().popup(QCursor::pos());
    }
  });
}

void XEmbedItem::setIconName(const std::optional<QString>& iconName) {
  iconName_ = iconName;
  drawIcon();
}

void XEmbedItem::appear() {
  icon_.show();
  drawIcon();
}

void XEmbedItem::drawIcon() {
  tray_.watchColours();
  // Read when they are watched, so that no change is missed in between.
  const QColor colour = tray_.foreground().value_or(contrastingColour());
  icon_.setIcon(iconName_ ? drawnIcon(*iconName_, colour) : blankIcon());
}

}  // namespace zephlin
