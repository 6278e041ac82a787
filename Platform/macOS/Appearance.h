#pragma once

#import <AppKit/AppKit.h>

#include "Platform/Views.h"

namespace zephlin {

/// The system's colour for a role, which follows the appearance. Autoreleased.
NSColor* nativeColor(const Color& color);

/// The system font. Autoreleased.
NSFont* nativeFont(const Font& font);

NSTextAlignment nativeAlignment(TextAlignment alignment);

}  // namespace zephlin
