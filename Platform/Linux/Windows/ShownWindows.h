#pragma once

#include <QApplication>
#include <QList>
#include <QWidget>

namespace zephlin {

/// The windows that the user sees and can open again: neither menus nor the tray's icon, which Qt
/// shows in a window of its own in trays of the older kind (XEmbed). Main thread.
inline QList<QWidget*> shownWindows() {
  QList<QWidget*> windows;
  for (QWidget* const widget : QApplication::topLevelWidgets()) {
    const bool isManaged =
        (widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog) &&
        !widget->windowFlags().testFlag(Qt::BypassWindowManagerHint);
    if (isManaged && widget->isVisible()) {
      windows.append(widget);
    }
  }
  return windows;
}

}  // namespace zephlin
