#pragma once

#include <optional>
#include <utility>

#include "Platform/Views.h"

namespace zephlin {

/// A filled box with rounded corners and an optional border of one point; it can embed a view.
/// Whoever changes `fill` marks the view as needing display. Main thread.
class RoundedView final : public Box {
 public:
  RoundedView(Color boxFill, std::optional<Color> boxBorder, double radius,
              std::optional<double> width = std::nullopt)
      : Box(width), fill(boxFill), border(boxBorder), cornerRadius(radius) {
    layer = Layer();
  }

  /// Reads the colours afresh.
  void updateLayer() override {
    if (layer) {
      *layer = {cornerRadius, fill, border ? 1.0 : 0.0, border};
    }
  }

  void embed(std::shared_ptr<View> view, const EdgeInsets& insets) {
    addSubview(std::move(view), insets);
  }

  Color fill;
  std::optional<Color> border;
  double cornerRadius;
};

}  // namespace zephlin
