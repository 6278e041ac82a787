#import "Platform/macOS/NativeViews.h"

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

NativeViews::NativeViews(const std::shared_ptr<View>& root) : root_(make(root)) {}

Retained<NSView*> NativeViews::make(const std::shared_ptr<View>& view) {
  Retained<NSView*> native;
  if (auto* const label = dynamic_cast<Label*>(view.get())) {
    native = makeLabel(*label);
  } else if (const auto* const button = dynamic_cast<const Button*>(view.get())) {
    native = makeButton(*button);
  } else if (const auto* const stack = dynamic_cast<const StackView*>(view.get())) {
    native = makeStack(*stack);
  } else {
    native = makeBox(view);
  }
  constrain(*view, native.get());
  return native;
}

Retained<NSView*> NativeViews::makeBox(const std::shared_ptr<View>& view) {
  if (!view->layer) {
    return Retained<NSView*>([[NSView alloc] initWithFrame:NSZeroRect]);
  }
  Retained<NSView*> native([[ZephlinLayerView alloc] initWithView:view]);
  // The portable view owns this function, which owns the native one, which holds it weakly.
  view->onNeedsDisplay = [native] { [native.get() setNeedsDisplay:YES]; };
  return native;
}

Retained<NSView*> NativeViews::makeLabel(Label& label) {
  NSString* const text = nativeText(label.text());
  NSTextField* const native = label.kind == Label::Kind::Wrapping
                                  ? [NSTextField wrappingLabelWithString:text]
                                  : [NSTextField labelWithString:text];
  [native setFont:nativeFont(label.font)];
  [native setAlignment:nativeAlignment(label.alignment)];
  if (label.preferredMaxLayoutWidth) {
    [native setPreferredMaxLayoutWidth:*label.preferredMaxLayoutWidth];
  }
  showLabel(native, label);
  label.onNeedsDisplay = [&label, kept = Retained<NSTextField*>::retaining(native)] {
    showLabel(kept.get(), label);
  };
  return Retained<NSView*>::retaining(native);
}

Retained<NSView*> NativeViews::makeButton(const Button& button) {
  Retained<ZephlinActionTarget*> target([[ZephlinActionTarget alloc] initWithAction:button.action]);
  NSButton* const native = [NSButton buttonWithTitle:nativeText(button.title)
                                              target:target.get()
                                              action:@selector(performAction:)];
  [native setBezelStyle:NSBezelStyleRounded];
  [native setControlSize:NSControlSizeRegular];
  targets_.push_back(std::move(target));
  return Retained<NSView*>::retaining(native);
}

Retained<NSView*> NativeViews::makeStack(const StackView& stack) {
  const bool isVertical = stack.orientation == StackView::Orientation::Vertical;
  Retained<NSStackView*> native([[NSStackView alloc] initWithFrame:NSZeroRect]);
  [native.get() setOrientation:nativeOrientation(stack.orientation)];
  [native.get() setAlignment:isVertical ? NSLayoutAttributeCenterX : NSLayoutAttributeCenterY];
  [native.get() setSpacing:stack.spacing];
  [native.get() setEdgeInsets:nativeInsets(stack.edgeInsets)];
  if (stack.distribution == StackView::Distribution::FillEqually) {
    [native.get() setDistribution:NSStackViewDistributionFillEqually];
  }
  for (const auto& view : stack.arrangedSubviews()) {
    const Retained<NSView*> arranged = make(view);
    [native.get() addArrangedSubview:arranged.get()];
    if (stack.spacingAfter(*view) != stack.spacing) {
      [native.get() setCustomSpacing:stack.spacingAfter(*view) afterView:arranged.get()];
    }
  }
  return Retained<NSView*>::retaining(native.get());
}

void NativeViews::constrain(const View& view, NSView* native) {
  NSMutableArray* const constraints = [NSMutableArray array];
  for (const View::Subview& subview : view.subviews()) {
    const Retained<NSView*> child = make(subview.view);
    [native addSubview:child.get()];
    [child.get() setTranslatesAutoresizingMaskIntoConstraints:NO];
    pin(child.get(), native, subview.insets, constraints);
  }
  if (view.fixedWidth) {
    [constraints addObject:[[native widthAnchor] constraintEqualToConstant:*view.fixedWidth]];
  }
  [NSLayoutConstraint activateConstraints:constraints];
}

}  // namespace zephlin
