#import "Platform/macOS/Appearance.h"

namespace zephlin {

namespace {

NSColor* colorFor(ColorRole role) {
  switch (role) {
    case ColorRole::Label:
      return [NSColor labelColor];
    case ColorRole::SecondaryLabel:
      return [NSColor secondaryLabelColor];
    case ColorRole::TertiaryLabel:
      return [NSColor tertiaryLabelColor];
    case ColorRole::Separator:
      return [NSColor separatorColor];
    case ColorRole::ControlBackground:
      return [NSColor controlBackgroundColor];
    case ColorRole::SystemGreen:
      return [NSColor systemGreenColor];
    case ColorRole::SystemRed:
      return [NSColor systemRedColor];
    case ColorRole::SystemOrange:
      return [NSColor systemOrangeColor];
  }
}

NSFontWeight nativeWeight(FontWeight weight) {
  switch (weight) {
    case FontWeight::Regular:
      return NSFontWeightRegular;
    case FontWeight::Semibold:
      return NSFontWeightSemibold;
    case FontWeight::Bold:
      return NSFontWeightBold;
  }
}

}  // namespace

NSColor* nativeColor(const Color& color) {
  NSColor* const opaque = colorFor(color.role);
  // Replacing the alpha of a colour that is translucent by itself would make it opaque.
  return color.alpha == 1 ? opaque : [opaque colorWithAlphaComponent:color.alpha];
}

NSFont* nativeFont(const Font& font) {
  const NSFontWeight weight = nativeWeight(font.weight);
  return font.monospacedDigits
             ? [NSFont monospacedDigitSystemFontOfSize:font.pointSize weight:weight]
             : [NSFont systemFontOfSize:font.pointSize weight:weight];
}

NSTextAlignment nativeAlignment(TextAlignment alignment) {
  switch (alignment) {
    case TextAlignment::Natural:
      return NSTextAlignmentNatural;
    case TextAlignment::Center:
      return NSTextAlignmentCenter;
  }
}

}  // namespace zephlin
