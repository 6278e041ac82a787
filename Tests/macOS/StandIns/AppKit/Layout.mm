#import <AppKit/AppKit.h>

#include <algorithm>

#import "StandIns/AppKit/ViewState.h"

// A layout engine for what is asked here: a width, a child at insets, and stacks.

namespace standins {

namespace {

constexpr CGFloat anyHeight = 10000;

CGFloat constantOf(NSView* view, NSLayoutAttribute attribute, NSView* relatedTo) {
  for (const NSLayoutConstraint* constraint : viewState(view).constraints) {
    if (constraint->_attribute == attribute && constraint->_secondView == relatedTo) {
      return constraint->_constant;
    }
  }
  return 0;
}

bool isPinned(NSView* child, NSView* parent) {
  const auto& all = viewState(child).constraints;
  return std::count_if(all.begin(), all.end(), [parent](const NSLayoutConstraint* constraint) {
           return constraint->_secondView == parent;
         }) == 4;
}

NSEdgeInsets insetsOf(NSView* child, NSView* parent) {
  return NSEdgeInsetsMake(constantOf(child, NSLayoutAttributeTop, parent),
                          constantOf(child, NSLayoutAttributeLeading, parent),
                          -constantOf(child, NSLayoutAttributeBottom, parent),
                          -constantOf(child, NSLayoutAttributeTrailing, parent));
}

NSSize labelSize(NSTextField* label) {
  const CGFloat width = viewState(label).preferredMaxLayoutWidth;
  if (width > 0) {
    const NSRect bounds =
        [[label attributedStringValue] boundingRectWithSize:NSMakeSize(width, anyHeight)
                                                    options:NSStringDrawingUsesLineFragmentOrigin];
    return NSMakeSize(width, std::ceil(bounds.size.height));
  }
  // GNUstep measures a text a little narrower than it then draws it.
  const NSSize size = [[label cell] cellSize];
  return NSMakeSize(std::ceil(size.width) + 4, std::ceil(size.height));
}

CGFloat gapAfter(NSStackView* stack, NSView* view) {
  NSNumber* const custom = [stack->_customSpacing objectForKey:view];
  return custom == nil ? [stack spacing] : [custom doubleValue];
}

NSSize stackSize(NSStackView* stack) {
  const NSEdgeInsets insets = [stack edgeInsets];
  const bool isVertical = [stack orientation] == NSUserInterfaceLayoutOrientationVertical;
  CGFloat along = 0;
  CGFloat across = 0;
  for (NSView* view in [stack arrangedSubviews]) {
    const NSSize size = fittingSize(view);
    along += isVertical ? size.height : size.width;
    across = std::max(across, isVertical ? size.width : size.height);
    if (view != [[stack arrangedSubviews] lastObject]) {
      along += gapAfter(stack, view);
    }
  }
  const NSSize content = isVertical ? NSMakeSize(across, along) : NSMakeSize(along, across);
  return NSMakeSize(content.width + insets.left + insets.right,
                    content.height + insets.top + insets.bottom);
}

void layOutColumn(NSStackView* stack) {
  const NSRect bounds = [stack bounds];
  CGFloat top = bounds.size.height - [stack edgeInsets].top;
  for (NSView* view in [stack arrangedSubviews]) {
    const NSSize size = fittingSize(view);
    [view setFrame:NSMakeRect((bounds.size.width - size.width) / 2, top - size.height, size.width,
                              size.height)];
    top -= size.height + gapAfter(stack, view);
  }
}

void layOutRow(NSStackView* stack) {
  const NSRect bounds = [stack bounds];
  const auto count = static_cast<CGFloat>([[stack arrangedSubviews] count]);
  const CGFloat equal = (bounds.size.width - [stack spacing] * (count - 1)) / count;
  CGFloat left = 0;
  for (NSView* view in [stack arrangedSubviews]) {
    NSSize size = fittingSize(view);
    if ([stack distribution] == NSStackViewDistributionFillEqually) {
      size.width = equal;
    }
    [view
        setFrame:NSMakeRect(left, (bounds.size.height - size.height) / 2, size.width, size.height)];
    left += size.width + gapAfter(stack, view);
  }
}

NSSize pinnedSize(NSView* view) {
  NSSize size = NSZeroSize;
  for (NSView* child in [view subviews]) {
    if (isPinned(child, view)) {
      const NSEdgeInsets insets = insetsOf(child, view);
      const NSSize inner = fittingSize(child);
      size.width = std::max(size.width, inner.width + insets.left + insets.right);
      size.height = std::max(size.height, inner.height + insets.top + insets.bottom);
    }
  }
  return size;
}

NSSize contentSize(NSView* view) {
  if ([view isKindOfClass:[NSStackView class]]) {
    return stackSize(static_cast<NSStackView*>(view));
  }
  if ([view isKindOfClass:[NSTextField class]]) {
    return labelSize(static_cast<NSTextField*>(view));
  }
  if ([view isKindOfClass:[NSButton class]]) {
    const NSSize size = [[static_cast<NSButton*>(view) cell] cellSize];
    return NSMakeSize(size.width + 16, size.height + 4);
  }
  return pinnedSize(view);
}

}  // namespace

NSSize fittingSize(NSView* view) {
  NSSize size = contentSize(view);
  if (const CGFloat width = constantOf(view, NSLayoutAttributeWidth, nil); width > 0) {
    size.width = width;
  }
  return size;
}

void layOut(NSView* view) {
  const NSSize size = [view bounds].size;
  for (NSView* child in [view subviews]) {
    if (isPinned(child, view)) {
      const NSEdgeInsets insets = insetsOf(child, view);
      [child
          setFrame:NSMakeRect(insets.left, insets.bottom, size.width - insets.left - insets.right,
                              size.height - insets.top - insets.bottom)];
    }
  }
  if ([view isKindOfClass:[NSStackView class]]) {
    NSStackView* const stack = static_cast<NSStackView*>(view);
    [stack orientation] == NSUserInterfaceLayoutOrientationVertical ? layOutColumn(stack)
                                                                    : layOutRow(stack);
  }
  for (NSView* child in [view subviews]) {
    layOut(child);
  }
}

}  // namespace standins
