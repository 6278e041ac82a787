#pragma once

#import <AppKit/AppKit.h>

#include <vector>

namespace standins {

/// What a view of macOS knows beyond GNUstep's.
struct ViewState {
  bool translatesAutoresizingMask = true;
  bool wantsLayer = false;
  CALayer* layer = nil;  // Owned.
  CGFloat preferredMaxLayoutWidth = 0;
  std::vector<NSLayoutConstraint*> constraints;  // Owned; those whose first view this is.
};

/// Kept until the view is deallocated.
ViewState& viewState(NSView* view);

/// Lays out the view's descendants by the constraints.
void layOut(NSView* view);

/// How large the view has to be for its content.
NSSize fittingSize(NSView* view);

}  // namespace standins
