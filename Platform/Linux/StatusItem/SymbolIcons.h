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
/// theme falls back to. Qt would tell too, but reads whole themes for it. Any thread.
bool isInstalledIcon(const QString& iconName);

/// The icon of this name for a panel that loads it from the theme and colours it. Main thread.
QIcon namedIcon(const QString& iconName);

/// The icon of this name as the program carries it, drawn in one colour and in all sizes that
/// panels ask for. Main thread.
QIcon drawnIcon(const QString& iconName, const QColor& colour);

/// Where the panel's colours are unknown: at least three times lighter or darker than a usual light
/// or dark panel (WCAG 2.1, success criterion 1.4.11).
QColor contrastingColour();

}  // namespace zephlin
