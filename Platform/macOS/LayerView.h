#pragma once

#import <AppKit/AppKit.h>

#include <memory>

#include "Platform/Views.h"

/// Shows the layer of a portable view: AppKit asks it to update its layer instead of drawing.
@interface ZephlinLayerView : NSView {
 @private
  std::weak_ptr<zephlin::View> _view;
}
- (instancetype)initWithView:(std::weak_ptr<zephlin::View>)view;
- (instancetype)initWithFrame:(NSRect)frame NS_UNAVAILABLE;
/// Stops the program: no view is made from an archive.
- (instancetype)initWithCoder:(NSCoder*)coder;
@end
