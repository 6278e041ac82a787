#import <AppKit/AppKit.h>

#include <map>
#include <tuple>

#import "StandIns/Actions.h"
#import "StandIns/Knobs.h"
#import "StandIns/ReplacedMethod.h"

// Some values in place of the system's, so that pictures can be looked at.

namespace {

NSColor* color(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
  return [NSColor colorWithCalibratedRed:red green:green blue:blue alpha:alpha];
}

/// A font of its own for each size, weight and kind of digits, as AppKit has it, though GNUstep
/// draws with two weights and knows one kind. They are kept.
NSFont* systemFont(CGFloat size, NSFontWeight weight, bool hasMonospacedDigits) {
  static std::map<std::tuple<CGFloat, NSFontWeight, bool>, NSFont*> fonts;
  NSFont*& font = fonts[{size, weight, hasMonospacedDigits}];
  if (font == nil) {
    NSFont* const drawn = weight > NSFontWeightMedium ? [NSFont boldSystemFontOfSize:size]
                                                      : [NSFont systemFontOfSize:size];
    // The copy shares what the font owns, so that is never released.
    font = static_cast<NSFont*>(NSCopyObject([drawn retain], 0, nullptr));
  }
  return font;
}

const standins::ReplacedMethod<BOOL, id> isSameFont("NSFont",
                                                    "isEqual:", [](id self, SEL, id other) -> BOOL {
                                                      return self == other ? YES : NO;
                                                    });

}  // namespace

@implementation NSFont (StandIn)

+ (NSFont*)systemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight {
  return systemFont(fontSize, weight, false);
}

+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight {
  return systemFont(fontSize, weight, true);
}

@end

@implementation NSColor (StandIn)

+ (NSColor*)separatorColor {
  return color(0, 0, 0, 0.1);
}

+ (NSColor*)secondaryLabelColor {
  return color(0, 0, 0, 0.5);
}

+ (NSColor*)tertiaryLabelColor {
  return color(0, 0, 0, 0.26);
}

- (CGColorRef)CGColor {
  NSColor* const shown = standins::knobs().isDark
                             ? [self colorWithAlphaComponent:[self alphaComponent] / 2]
                             : [[self retain] autorelease];
  return reinterpret_cast<CGColorRef>(shown);
}

@end

void standins::setDark(bool isDark) {
  knobs().isDark = isDark;
  for (NSWindow* window in [NSApp windows]) {
    [[window contentView] setNeedsDisplay:YES];
  }
}
