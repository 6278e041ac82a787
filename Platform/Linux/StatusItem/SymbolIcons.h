#pragma once

#include <QColor>
#include <QIcon>
#include <QString>
#include <optional>
#include <string>

namespace zephlin {

/// The name, in the desktop's icon theme, of the icon for a symbol; absent for an unknown symbol.
/// Any thread.
std::optional<QString> iconNameOf(const std::string& symbol);

/// Whether the icon of this name is installed for the desktop's panels: in hicolor, which every
/// theme falls back to. Qt knows too, but reads whole themes to find out. Any thread.
bool isInstalledIcon(const QString& iconName);

/// The icon of this name for a panel that loads it from the theme and colours it. Main thread.
QIcon namedIcon(const QString& iconName);

/// The icon of this name as the program carries it, drawn in one colour and in all sizes that
/// panels ask for. Main thread.
QIcon drawnIcon(const QString& iconName, const QColor& colour);

/// For panels whose colours are unknown: has a contrast of at least 3:1 with the usual light and
/// dark panels (WCAG 2.1, success criterion 1.4.11).
QColor contrastingColour();

}  // namespace zephlin
