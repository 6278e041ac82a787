#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "Platform/Views.h"

/// Shows the layer of a portable box: AppKit asks it to update its layer instead of drawing.
@interface ZephlinLayerView : NSView {
 @private
  std::weak_ptr<zephlin::Box> _box;
}
- (instancetype)initWithBox:(std::weak_ptr<zephlin::Box>)box;
- (instancetype)initWithFrame:(NSRect)frame NS_UNAVAILABLE;
/// Stops the program: no view is made from an archive.
- (instancetype)initWithCoder:(NSCoder*)coder;
@end
