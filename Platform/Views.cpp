#include "Platform/Views.h"

namespace zephlin {

void Box::addSubview(std::shared_ptr<View> child, const EdgeInsets& insets) {
  subviews_.push_back({std::move(child), insets});
}

void Label::setText(std::string text) {
  text_ = std::move(text);
  needsDisplay = true;
}

void Label::setTextColor(Color color) {
  textColor_ = color;
  needsDisplay = true;
}

void StackView::addArrangedSubview(std::shared_ptr<View> view,
                                   std::optional<double> customSpacing) {
  arranged_.push_back({std::move(view), customSpacing.value_or(layout.spacing)});
}

}  // namespace zephlin
