#import "Platform/macOS/LayerView.h"

#import <QuartzCore/QuartzCore.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#import "Platform/macOS/Appearance.h"

@implementation ZephlinLayerView

- (instancetype)initWithView:(std::weak_ptr<zephlin::View>)view {
  self = [super initWithFrame:NSZeroRect];
  if (self != nil) {
    _view = std::move(view);
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
  const auto view = _view.lock();
  if (native == nil || !view || !view->layer) {
    return;
  }
  view->needsDisplay = false;
  view->updateLayer();
  const zephlin::Layer& layer = *view->layer;
  [native setCornerRadius:layer.cornerRadius];
  [native setBackgroundColor:[zephlin::nativeColor(layer.backgroundColor) CGColor]];
  [native setBorderWidth:layer.borderWidth];
  [native setBorderColor:layer.borderColor ? [zephlin::nativeColor(*layer.borderColor) CGColor]
                                           : nullptr];
}

@end
