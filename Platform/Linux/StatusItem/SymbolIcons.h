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

/// The icon of this name in the desktop's icon theme, which a panel loads and colours itself. A
/// null icon where the theme has none. Main thread.
QIcon themeIcon(const QString& iconName);

/// The icon of this name as the program carries it, drawn in one colour and in all sizes that
/// panels ask for. Main thread.
QIcon drawnIcon(const QString& iconName, const QColor& colour);

/// Where the panel's colours are unknown: at least three times lighter or darker than a usual light
/// or dark panel (WCAG 2.1, success criterion 1.4.11).
QColor contrastingColour();

}  // namespace zephlin
