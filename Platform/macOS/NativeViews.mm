#import "Platform/macOS/NativeViews.h"

#import <QuartzCore/QuartzCore.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#import "Platform/macOS/Bridge.h"

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

namespace zephlin {

namespace {

NSColor* colorFor(ColorRole role) {
  switch (role) {
    case ColorRole::Label:
      return [NSColor labelColor];
    case ColorRole::SecondaryLabel:
      return [NSColor secondaryLabelColor];
    case ColorRole::TertiaryLabel:
      return [NSColor tertiaryLabelColor];
    case ColorRole::Separator:
      return [NSColor separatorColor];
    case ColorRole::ControlBackground:
      return [NSColor controlBackgroundColor];
    case ColorRole::SystemGreen:
      return [NSColor systemGreenColor];
    case ColorRole::SystemRed:
      return [NSColor systemRedColor];
    case ColorRole::SystemOrange:
      return [NSColor systemOrangeColor];
  }
}

NSFontWeight nativeWeight(FontWeight weight) {
  switch (weight) {
    case FontWeight::Regular:
      return NSFontWeightRegular;
    case FontWeight::Semibold:
      return NSFontWeightSemibold;
    case FontWeight::Bold:
      return NSFontWeightBold;
  }
}

/// The system's colour for a role, which follows the appearance. Autoreleased.
NSColor* nativeColor(const Color& color) {
  NSColor* const opaque = colorFor(color.role);
  // Replacing the alpha of a colour that is translucent by itself would make it opaque.
  return color.alpha == 1 ? opaque : [opaque colorWithAlphaComponent:color.alpha];
}

/// The system font. Autoreleased.
NSFont* nativeFont(const Font& font) {
  const NSFontWeight weight = nativeWeight(font.weight);
  return font.monospacedDigits
             ? [NSFont monospacedDigitSystemFontOfSize:font.pointSize weight:weight]
             : [NSFont systemFontOfSize:font.pointSize weight:weight];
}

NSTextAlignment nativeAlignment(TextAlignment alignment) {
  switch (alignment) {
    case TextAlignment::Natural:
      return NSTextAlignmentNatural;
    case TextAlignment::Center:
      return NSTextAlignmentCenter;
  }
}

}  // namespace

}  // namespace zephlin

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

namespace zephlin {

namespace {

void showLabel(NSTextField* native, Label& label) {
  label.needsDisplay = false;
  [native setStringValue:nativeText(label.text())];
  [native setTextColor:nativeColor(label.textColor())];
}

NSEdgeInsets nativeInsets(const EdgeInsets& insets) {
  return NSEdgeInsetsMake(insets.top, insets.left, insets.bottom, insets.right);
}

NSUserInterfaceLayoutOrientation nativeOrientation(StackView::Orientation orientation) {
  return orientation == StackView::Orientation::Vertical
             ? NSUserInterfaceLayoutOrientationVertical
             : NSUserInterfaceLayoutOrientationHorizontal;
}

void pin(NSView* child, NSView* parent, const EdgeInsets& insets, NSMutableArray* constraints) {
  [constraints addObject:[[child topAnchor] constraintEqualToAnchor:[parent topAnchor]
                                                           constant:insets.top]];
  [constraints addObject:[[child bottomAnchor] constraintEqualToAnchor:[parent bottomAnchor]
                                                              constant:-insets.bottom]];
  [constraints addObject:[[child leadingAnchor] constraintEqualToAnchor:[parent leadingAnchor]
                                                               constant:insets.left]];
  [constraints addObject:[[child trailingAnchor] constraintEqualToAnchor:[parent trailingAnchor]
                                                                constant:-insets.right]];
}

}  // namespace

NativeViews::NativeViews(std::shared_ptr<View> root)
    : portableRoot_(std::move(root)), root_(make(*portableRoot_)) {}

void NativeViews::displayIfNeeded() {
  for (const auto& label : labels_) {
    if (label.portable.needsDisplay) {
      showLabel(label.native.get(), label.portable);
    }
  }
  for (const auto& box : layers_) {
    if (box.portable.needsDisplay) {
      [box.native.get() setNeedsDisplay:YES];
    }
  }
}

Retained<NSView*> NativeViews::make(View& view) {
  view.accept(*this);
  NSMutableArray* const constraints = [NSMutableArray arrayWithArray:pins_.get()];
  if (view.fixedWidth) {
    [constraints addObject:[[made_.get() widthAnchor] constraintEqualToConstant:*view.fixedWidth]];
  }
  [NSLayoutConstraint activateConstraints:constraints];
  pins_ = {};
  return std::move(made_);
}

void NativeViews::visit(Box& box) {
  Retained<NSView*> native;
  if (box.layer) {
    // Shares the ownership of the whole tree.
    const std::shared_ptr<Box> owned(portableRoot_, &box);
    native = Retained<NSView*>([[ZephlinLayerView alloc] initWithBox:owned]);
    layers_.push_back({box, native});
  } else {
    native = Retained<NSView*>([[NSView alloc] initWithFrame:NSZeroRect]);
  }
  NSMutableArray* const constraints = [NSMutableArray array];
  for (const Box::Subview& subview : box.subviews()) {
    const Retained<NSView*> child = make(*subview.view);
    [native.get() addSubview:child.get()];
    [child.get() setTranslatesAutoresizingMaskIntoConstraints:NO];
    pin(child.get(), native.get(), subview.insets, constraints);
  }
  pins_ = Retained<NSArray*>::retaining(constraints);
  made_ = std::move(native);
}

void NativeViews::visit(Label& label) {
  NSString* const text = nativeText(label.text());
  NSTextField* const native = label.style.kind == Label::Kind::Wrapping
                                  ? [NSTextField wrappingLabelWithString:text]
                                  : [NSTextField labelWithString:text];
  [native setFont:nativeFont(label.style.font)];
  [native setAlignment:nativeAlignment(label.style.alignment)];
  if (label.style.preferredMaxLayoutWidth) {
    [native setPreferredMaxLayoutWidth:*label.style.preferredMaxLayoutWidth];
  }
  showLabel(native, label);
  labels_.push_back({label, Retained<NSTextField*>::retaining(native)});
  made_ = Retained<NSView*>::retaining(native);
}

void NativeViews::visit(Button& button) {
  Retained<ZephlinActionTarget*> target([[ZephlinActionTarget alloc] initWithAction:button.action]);
  NSButton* const native = [NSButton buttonWithTitle:nativeText(button.title)
                                              target:target.get()
                                              action:@selector(performAction:)];
  [native setBezelStyle:NSBezelStyleRounded];
  [native setControlSize:NSControlSizeRegular];
  targets_.push_back(std::move(target));
  made_ = Retained<NSView*>::retaining(native);
}

void NativeViews::visit(StackView& stack) {
  const StackView::Layout& layout = stack.layout;
  const bool isVertical = layout.orientation == StackView::Orientation::Vertical;
  Retained<NSStackView*> native([[NSStackView alloc] initWithFrame:NSZeroRect]);
  [native.get() setOrientation:nativeOrientation(layout.orientation)];
  [native.get() setAlignment:isVertical ? NSLayoutAttributeCenterX : NSLayoutAttributeCenterY];
  [native.get() setSpacing:layout.spacing];
  [native.get() setEdgeInsets:nativeInsets(layout.edgeInsets)];
  if (layout.distribution == StackView::Distribution::FillEqually) {
    [native.get() setDistribution:NSStackViewDistributionFillEqually];
  }
  for (const auto& [view, spacingAfter] : stack.arrangedSubviews()) {
    const Retained<NSView*> arranged = make(*view);
    [native.get() addArrangedSubview:arranged.get()];
    if (spacingAfter != layout.spacing) {
      [native.get() setCustomSpacing:spacingAfter afterView:arranged.get()];
    }
  }
  made_ = Retained<NSView*>::retaining(native.get());
}

}  // namespace zephlin
