#include "Platform/Views.h"

namespace zephlin {

void View::addSubview(std::shared_ptr<View> child, const EdgeInsets& insets) {
  subviews_.push_back({std::move(child), insets});
}

void View::setNeedsDisplay() {
  needsDisplay = true;
  if (onNeedsDisplay) {
    onNeedsDisplay();
  }
}

void Label::setText(std::string text) {
  text_ = std::move(text);
  setNeedsDisplay();
}

void Label::setTextColor(Color color) {
  textColor_ = color;
  setNeedsDisplay();
}

void StackView::addArrangedSubview(std::shared_ptr<View> view) {
  arranged_.push_back(std::move(view));
}

void StackView::setCustomSpacing(double spacingAfter, const View& view) {
  customSpacing_[&view] = spacingAfter;
}

double StackView::spacingAfter(const View& view) const {
  const auto custom = customSpacing_.find(&view);
  return custom == customSpacing_.end() ? spacing : custom->second;
}

}  // namespace zephlin
