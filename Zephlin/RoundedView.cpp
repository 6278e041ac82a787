#include "Zephlin/RoundedView.h"

#include <utility>

namespace zephlin {

RoundedView::RoundedView(Color boxFill, std::optional<Color> boxBorder, double radius,
                         std::optional<double> width)
    : Box(width), fill(boxFill), border(boxBorder), cornerRadius(radius) {
  layer = Layer();
}

void RoundedView::updateLayer() {
  if (layer) {
    *layer = {cornerRadius, fill, border ? 1.0 : 0.0, border};
  }
}

void RoundedView::embed(std::shared_ptr<View> view, const EdgeInsets& insets) {
  addSubview(std::move(view), insets);
}

}  // namespace zephlin
