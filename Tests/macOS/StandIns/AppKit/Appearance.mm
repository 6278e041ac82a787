#import <AppKit/AppKit.h>

// Some values in place of the system's, so that pictures can be looked at.

namespace {

NSColor* color(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
  return [NSColor colorWithCalibratedRed:red green:green blue:blue alpha:alpha];
}

}  // namespace

@implementation NSFont (StandIn)

+ (NSFont*)systemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight {
  return weight > NSFontWeightMedium ? [NSFont boldSystemFontOfSize:fontSize]
                                     : [NSFont systemFontOfSize:fontSize];
}

+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight {
  return [self systemFontOfSize:fontSize weight:weight];
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
  return reinterpret_cast<CGColorRef>([[self retain] autorelease]);
}

@end
