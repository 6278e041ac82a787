#pragma once

#include <QColor>
#include <QPalette>

#include "Platform/Views.h"

namespace zephlin {

enum class Appearance { Light, Dark };

/// Dark where the window's colour is. Any thread.
Appearance appearanceOf(const QPalette& palette);

/// What a colour looks like on a window of that appearance. Most roles let the window shine through
/// by themselves; the colour's own alpha comes on top. As text, the roles keep the contrast that
/// WCAG 2.1 (1.4.3) asks for on windows, cards and tinted boxes of the usual themes: 4.5:1, and 3:1
/// for the tertiary label. Any thread.
QColor resolve(const Color& color, Appearance appearance);

}  // namespace zephlin
