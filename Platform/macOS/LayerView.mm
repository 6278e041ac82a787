#import "Platform/macOS/LayerView.h"

#import <QuartzCore/QuartzCore.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#import "Platform/macOS/Appearance.h"

@implementation ZephlinLayerView

- (instancetype)initWithBox:(std::weak_ptr<zephlin::Box>)box {
  self = [super initWithFrame:NSZeroRect];
  if (self != nil) {
    _box = std::move(box);
    [self setWantsLayer:YES];
  }
  return self;
}

- (instancetype)initWithCoder:(NSCoder*)coder {
  (void)coder;
  std::fputs("not used\n", stderr);
  std::abort();
}

- (BOOL)wantsUpdateLayer {
  return YES;
}

// Colours are made anew each time, so that they are those of the current appearance.
- (void)updateLayer {
  CALayer* const native = [self layer];
  const auto box = _box.lock();
  if (native == nil || !box || !box->layer) {
    return;
  }
  box->needsDisplay = false;
  box->updateLayer();
  const zephlin::Layer& layer = *box->layer;
  [native setCornerRadius:layer.cornerRadius];
  [native setBackgroundColor:[zephlin::nativeColor(layer.backgroundColor) CGColor]];
  [native setBorderWidth:layer.borderWidth];
  [native setBorderColor:layer.borderColor ? [zephlin::nativeColor(*layer.borderColor) CGColor]
                                           : nullptr];
}

@end
