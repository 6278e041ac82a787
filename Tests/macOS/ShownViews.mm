#import "ShownViews.h"

#import <QuartzCore/QuartzCore.h>

#include <cmath>
#include <utility>

#import "Support/Mac.h"

namespace zephlin::test {

namespace {

using contract::ShownView;
using contract::ShownWindow;

NSColor* opaqueColor(ColorRole role) {
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

/// The first colour that is the one shown, of those that the application uses.
template <typename IsShown>
std::optional<Color> findColor(IsShown isShown) {
  for (const double alpha : {1.0, 0.14}) {
    for (const ColorRole role :
         {ColorRole::Label, ColorRole::SecondaryLabel, ColorRole::TertiaryLabel,
          ColorRole::Separator, ColorRole::ControlBackground, ColorRole::SystemGreen,
          ColorRole::SystemRed, ColorRole::SystemOrange}) {
      NSColor* const opaque = opaqueColor(role);
      if (isShown(alpha == 1 ? opaque : [opaque colorWithAlphaComponent:alpha])) {
        return Color{role, alpha};
      }
    }
  }
  return std::nullopt;
}

/// Of size 0 where it is no system font.
Font fontOf(NSFont* font) {
  const CGFloat size = [font pointSize];
  const std::pair<FontWeight, NSFontWeight> weights[] = {
      {FontWeight::Regular, NSFontWeightRegular},
      {FontWeight::Semibold, NSFontWeightSemibold},
      {FontWeight::Bold, NSFontWeightBold}};
  for (const auto& [weight, native] : weights) {
    if ([font isEqual:[NSFont systemFontOfSize:size weight:native]]) {
      return {size, weight, false};
    }
    if ([font isEqual:[NSFont monospacedDigitSystemFontOfSize:size weight:native]]) {
      return {size, weight, true};
    }
  }
  return {0, FontWeight::Regular, false};
}

std::optional<Layer> layerOf(NSView* view) {
  if (![view wantsUpdateLayer]) {
    return std::nullopt;
  }
  CALayer* const native = [view layer];
  Layer layer;
  layer.cornerRadius = [native cornerRadius];
  layer.backgroundColor = findColor([&](NSColor* color) {
                            return mac::isShown(color, [native backgroundColor], view);
                          }).value_or(Color{ColorRole::Label, 0});
  layer.borderWidth = [native borderWidth];
  layer.borderColor =
      findColor([&](NSColor* color) { return mac::isShown(color, [native borderColor], view); });
  return layer;
}

void readLabel(NSTextField* label, ShownView& view) {
  view.kind = ShownView::Kind::Label;
  view.text = [[label stringValue] UTF8String];
  view.wraps = [[label cell] wraps];
  view.font = fontOf([label font]);
  view.textColor = findColor([&](NSColor* color) { return [[label textColor] isEqual:color]; });
  view.alignment =
      [label alignment] == NSTextAlignmentCenter ? TextAlignment::Center : TextAlignment::Natural;
}

/// Where the view is for the layout, from the top left of the content.
void place(NSView* native, NSView* content, ShownView& view) {
  const NSRect aligned = [native alignmentRectForFrame:[native frame]];
  const NSRect frame = native == content ? [content bounds]
                                         : [[native superview] convertRect:aligned toView:content];
  view.left = NSMinX(frame);
  view.top = [content isFlipped] ? NSMinY(frame) : NSMaxY([content bounds]) - NSMaxY(frame);
  view.width = NSWidth(frame);
  view.height = NSHeight(frame);
}

void addTree(NSView* native, NSView* content, int depth, std::vector<ShownView>& views) {
  ShownView view;
  view.depth = depth;
  place(native, content, view);
  if ([native isKindOfClass:[NSTextField class]]) {
    readLabel(static_cast<NSTextField*>(native), view);
  } else if ([native isKindOfClass:[NSButton class]]) {
    view.kind = ShownView::Kind::Button;
    view.text = [[static_cast<NSButton*>(native) title] UTF8String];
  } else if ([native isKindOfClass:[NSStackView class]]) {
    view.kind =
        [static_cast<NSStackView*>(native) orientation] == NSUserInterfaceLayoutOrientationVertical
            ? ShownView::Kind::Column
            : ShownView::Kind::Row;
  } else {
    view.layer = layerOf(native);
  }
  views.push_back(view);
  // What is inside a control is AppKit's.
  if (![native isKindOfClass:[NSControl class]]) {
    for (NSView* child in [native subviews]) {
      addTree(child, content, depth + 1, views);
    }
  }
}

// AppKit's `center` leaves more room below the window than above it.
bool isCentered(NSWindow* window) {
  const NSRect frame = [window frame];
  const NSRect screen = [[window screen] visibleFrame];
  return std::abs(NSMidX(frame) - NSMidX(screen)) <= 1 && NSMidY(frame) >= NSMidY(screen) - 1;
}

}  // namespace

ShownWindow readBack(NSWindow* window) {
  [window displayIfNeeded];
  ShownWindow shown;
  shown.isFloating = [window level] == NSFloatingWindowLevel;
  shown.isResizable = ([window styleMask] & NSWindowStyleMaskResizable) != 0;
  shown.isCentered = isCentered(window);
  addTree([window contentView], [window contentView], 0, shown.views);
  return shown;
}

}  // namespace zephlin::test
