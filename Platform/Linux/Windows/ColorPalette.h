#pragma once

#include <QColor>
#include <QPalette>

#include "Platform/Views.h"

namespace zephlin {

enum class Appearance { Light, Dark };

/// Dark if the window colour is. Any thread.
Appearance appearanceOf(const QPalette& palette);

/// A colour's value on a window of that appearance. Most roles are translucent; the colour's own
/// alpha multiplies theirs. As text, the roles have the contrast that WCAG 2.1 (1.4.3) requires on
/// windows, cards and tinted boxes of the usual themes: 4.5:1, and 3:1 for the tertiary label. Any
/// thread.
QColor resolve(const Color& color, Appearance appearance);

}  // namespace zephlin
