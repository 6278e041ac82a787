#import <AppKit/AppKit.h>

#import "StandIns/AppKit/ViewState.h"
#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"
#import "StandIns/ReplacedMethod.h"

namespace {

void paint(CALayer* layer, NSRect bounds) {
  const CGFloat inset = [layer borderWidth] / 2;
  NSBezierPath* const path =
      [NSBezierPath bezierPathWithRoundedRect:NSInsetRect(bounds, inset, inset)
                                      xRadius:[layer cornerRadius]
                                      yRadius:[layer cornerRadius]];
  if (NSColor* const fill = reinterpret_cast<NSColor*>([layer backgroundColor])) {
    [fill setFill];
    [path fill];
  }
  if (NSColor* const border = reinterpret_cast<NSColor*>([layer borderColor])) {
    [border setStroke];
    [path setLineWidth:[layer borderWidth]];
    [path stroke];
  }
}

// A view with a layer that wants to update it is asked for that instead of being drawn.
const standins::ReplacedMethod<void, NSRect> drawRect("NSView",
                                                      "drawRect:", [](id self, SEL, NSRect) {
                                                        if ([self wantsUpdateLayer] &&
                                                            [self wantsLayer]) {
                                                          [self updateLayer];
                                                          paint([self layer], [self bounds]);
                                                        }
                                                      });

const standins::ReplacedMethod<NSData*, NSBitmapImageFileType, NSDictionary*> encode(
    "NSBitmapImageRep", "representationUsingType:properties:",
    [](id self, SEL selector, NSBitmapImageFileType type, NSDictionary* properties) -> NSData* {
      standins::record("NSBitmapImageRep representationUsingType:%lu properties:%lu",
                       static_cast<unsigned long>(type),
                       static_cast<unsigned long>([properties count]));
      return standins::knobs().imagesCanBeEncoded
                 ? encode.original(self, selector, type, properties)
                 : nil;
    });

}  // namespace

@implementation NSView (StandInLayers)

- (BOOL)wantsLayer {
  return standins::viewState(self).wantsLayer ? YES : NO;
}

- (void)setWantsLayer:(BOOL)wantsLayer {
  standins::viewState(self).wantsLayer = wantsLayer;
  if (wantsLayer && [self layer] == nil) {
    [self setLayer:[[[CALayer alloc] init] autorelease]];
  }
}

- (CALayer*)layer {
  return standins::viewState(self).layer;
}

- (void)setLayer:(CALayer*)layer {
  [layer retain];
  [standins::viewState(self).layer release];
  standins::viewState(self).layer = layer;
}

- (BOOL)wantsUpdateLayer {
  return NO;
}

- (void)updateLayer {
}

- (NSBitmapImageRep*)bitmapImageRepForCachingDisplayInRect:(NSRect)rect {
  if (!standins::knobs().viewsCanBeCached) {
    return nil;
  }
  // Texts may have changed their sizes.
  standins::layOut([[self window] contentView]);
  [[[self window] contentView] display];
  return
      [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                               pixelsWide:static_cast<NSInteger>(rect.size.width)
                                               pixelsHigh:static_cast<NSInteger>(rect.size.height)
                                            bitsPerSample:8
                                          samplesPerPixel:4
                                                 hasAlpha:YES
                                                 isPlanar:NO
                                           colorSpaceName:NSCalibratedRGBColorSpace
                                              bytesPerRow:0
                                             bitsPerPixel:32] autorelease];
}

@end
