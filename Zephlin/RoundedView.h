#pragma once

#include <optional>

#include "Platform/Views.h"

namespace zephlin {

/// A filled box with rounded corners and an optional border of one point; it can embed a view.
/// Whoever changes `fill` marks the view as needing display. Main thread.
class RoundedView final : public Box {
 public:
  RoundedView(Color boxFill, std::optional<Color> boxBorder, double radius,
              std::optional<double> width = std::nullopt);

  /// Reads the colours afresh.
  void updateLayer() override;
  void embed(std::shared_ptr<View> view, const EdgeInsets& insets);

  Color fill;
  std::optional<Color> border;
  double cornerRadius;
};

}  // namespace zephlin
