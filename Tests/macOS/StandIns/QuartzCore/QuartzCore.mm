#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

namespace {

// A CGColorRef is an NSColor here.
void assign(CGColorRef& field, CGColorRef color) {
  [reinterpret_cast<NSColor*>(color) retain];
  [reinterpret_cast<NSColor*>(field) release];
  field = color;
}

}  // namespace

@implementation CALayer

@synthesize cornerRadius = _cornerRadius;
@synthesize borderWidth = _borderWidth;

- (void)dealloc {
  [self setBackgroundColor:nullptr];
  [self setBorderColor:nullptr];
  [super dealloc];
}

- (CGColorRef)backgroundColor {
  return _backgroundColor;
}

- (void)setBackgroundColor:(CGColorRef)color {
  assign(_backgroundColor, color);
}

- (CGColorRef)borderColor {
  return _borderColor;
}

- (void)setBorderColor:(CGColorRef)color {
  assign(_borderColor, color);
}

@end
