#import "Platform/macOS/NativeViews.h"

#include <utility>

#import "Platform/macOS/Appearance.h"
#import "Platform/macOS/LayerView.h"
#import "Platform/macOS/Text.h"

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
