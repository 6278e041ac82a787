#pragma once

#include <QByteArray>
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

/// The icon of this name as the program carries it, drawn in one colour and in all sizes that
/// panels ask for. Main thread.
QIcon drawnIcon(const QString& iconName, const QColor& colour);

/// The icon of this name as the pixels of a StatusNotifier picture, in the contrasting colour:
/// opacity, red, green and blue of each. `size` is one of symbolMaskSizes. Transparent without a
/// name. Any thread.
QByteArray symbolPicture(const std::optional<QString>& iconName, int size);

/// For panels whose colours are unknown: has a contrast of at least 3:1 with light panels down to
/// #e4e4e4 and with dark ones up to #333333 (WCAG 2.1, success criterion 1.4.11). The icons' files
/// have it too, for panels that do not recolour them.
QColor contrastingColour();

}  // namespace zephlin
