#include "Tests/Contract/SimulatedShownWindow.h"

#include <algorithm>

namespace zephlin::contract {

namespace {

struct Size {
  double width = 0;
  double height = 0;
};

struct Frame {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
};

Size fittingSize(const View& view);

Size labelSize(const Label& label) {
  const double width = static_cast<double>(label.text().size()) * label.style.font.pointSize / 2;
  return {std::min(width, label.style.preferredMaxLayoutWidth.value_or(width)),
          label.style.font.pointSize};
}

Size stackSize(const StackView& stack) {
  const bool isColumn = stack.layout.orientation == StackView::Orientation::Vertical;
  double along = 0;
  double across = 0;
  for (const auto& [view, spacingAfter] : stack.arrangedSubviews()) {
    const Size size = fittingSize(*view);
    along += isColumn ? size.height : size.width;
    across = std::max(across, isColumn ? size.width : size.height);
    along += view == stack.arrangedSubviews().back().view ? 0 : spacingAfter;
  }
  const EdgeInsets& insets = stack.layout.edgeInsets;
  return {(isColumn ? across : along) + insets.left + insets.right,
          (isColumn ? along : across) + insets.top + insets.bottom};
}

Size pinnedSize(const Box& view) {
  Size size;
  for (const auto& [child, insets] : view.subviews()) {
    const Size inner = fittingSize(*child);
    size = {std::max(size.width, inner.width + insets.left + insets.right),
            std::max(size.height, inner.height + insets.top + insets.bottom)};
  }
  return size;
}

Size fittingSize(const View& view) {
  Size size;
  if (const auto* const label = dynamic_cast<const Label*>(&view)) {
    size = labelSize(*label);
  } else if (const auto* const stack = dynamic_cast<const StackView*>(&view)) {
    size = stackSize(*stack);
  } else if (dynamic_cast<const Button*>(&view) != nullptr) {
    size = {60, 20};
  } else if (const auto* const box = dynamic_cast<const Box*>(&view)) {
    size = pinnedSize(*box);
  }
  size.width = view.fixedWidth.value_or(size.width);
  return size;
}

class Layout {
 public:
  void add(const View& view, const Frame& frame, int depth);

  std::vector<ShownView> views;

 private:
  void addColumn(const StackView& stack, const Frame& frame, int depth);
  void addRow(const StackView& stack, const Frame& frame, int depth);
};

void Layout::add(const View& view, const Frame& frame, int depth) {
  ShownView shown;
  shown.depth = depth;
  shown.left = frame.left;
  shown.top = frame.top;
  shown.width = frame.width;
  shown.height = frame.height;
  const auto* const box = dynamic_cast<const Box*>(&view);
  shown.layer = box != nullptr ? box->layer : std::nullopt;
  const auto* const stack = dynamic_cast<const StackView*>(&view);
  const bool isColumn =
      stack != nullptr && stack->layout.orientation == StackView::Orientation::Vertical;
  if (const auto* const label = dynamic_cast<const Label*>(&view)) {
    shown.kind = ShownView::Kind::Label;
    shown.text = label->text();
    shown.wraps = label->style.kind == Label::Kind::Wrapping;
    shown.font = label->style.font;
    shown.textColor = label->textColor();
    shown.alignment = label->style.alignment;
  } else if (const auto* const button = dynamic_cast<const Button*>(&view)) {
    shown.kind = ShownView::Kind::Button;
    shown.text = button->title;
  } else if (stack != nullptr) {
    shown.kind = isColumn ? ShownView::Kind::Column : ShownView::Kind::Row;
  }
  views.push_back(shown);
  if (box != nullptr) {
    for (const auto& [child, insets] : box->subviews()) {
      add(*child,
          {frame.left + insets.left, frame.top + insets.top,
           frame.width - insets.left - insets.right, frame.height - insets.top - insets.bottom},
          depth + 1);
    }
  }
  if (stack != nullptr) {
    isColumn ? addColumn(*stack, frame, depth + 1) : addRow(*stack, frame, depth + 1);
  }
}

void Layout::addColumn(const StackView& stack, const Frame& frame, int depth) {
  double top = frame.top + stack.layout.edgeInsets.top;
  for (const auto& [view, spacingAfter] : stack.arrangedSubviews()) {
    const Size size = fittingSize(*view);
    add(*view, {frame.left + (frame.width - size.width) / 2, top, size.width, size.height}, depth);
    top += size.height + spacingAfter;
  }
}

void Layout::addRow(const StackView& stack, const Frame& frame, int depth) {
  const auto count = static_cast<double>(stack.arrangedSubviews().size());
  const double share = (frame.width - stack.layout.spacing * (count - 1)) / count;
  double left = frame.left + stack.layout.edgeInsets.left;
  for (const auto& [view, spacingAfter] : stack.arrangedSubviews()) {
    const bool isEqual = stack.layout.distribution == StackView::Distribution::FillEqually;
    const Size size = fittingSize(*view);
    const double width = isEqual ? share : size.width;
    add(*view, {left, frame.top, width, frame.height}, depth);
    left += width + spacingAfter;
  }
}

}  // namespace

ShownWindow laidOut(SimulatedWindow& window) {
  window.displayIfNeeded();
  const Size size = fittingSize(*window.contentView);
  Layout layout;
  layout.add(*window.contentView, {0, 0, size.width, size.height}, 0);
  return {.isFloating = true,
          .isResizable = false,
          .isCentered = window.centerings > 0,
          .views = std::move(layout.views)};
}

}  // namespace zephlin::contract
