#pragma once

#include <optional>

#include "Platform/Views.h"

namespace zephlin {

/// A filled box with rounded corners and, at will, a border of one point; it can embed a view. Who
/// changes `fill` marks the view as needing display. Main thread.
class RoundedView final : public View {
 public:
  RoundedView(Color boxFill, std::optional<Color> boxBorder, double radius);

  /// Reads the colours afresh.
  void updateLayer() override;
  void embed(std::shared_ptr<View> view, const EdgeInsets& insets);

  Color fill;
  std::optional<Color> border;
  double cornerRadius;
};

}  // namespace zephlin
