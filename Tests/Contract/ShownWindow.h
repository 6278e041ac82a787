#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Platform/Views.h"

namespace zephlin::contract {

/// A view of a window, as the user sees it. Lengths are in points, from the top left of the
/// window's content.
struct ShownView {
  enum class Kind { View, Row, Column, Label, Button };

  Kind kind = Kind::View;
  /// How many views it is inside of.
  int depth = 0;
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;

  /// A label's, or a button's title.
  std::string text;
  bool wraps = false;
  Font font;
  /// Absent if no role has this colour, or the label is blank.
  std::optional<Color> textColor;
  TextAlignment alignment = TextAlignment::Natural;

  /// Absent for a view that shows nothing itself.
  std::optional<Layer> layer;
};

/// A window, and its views from the outside in and from top left to bottom right.
struct ShownWindow {
  bool isFloating = false;
  bool isResizable = false;
  bool isCentered = false;
  std::vector<ShownView> views;
};

/// The window in lines of text: how each view looks and where it is among its neighbours. Nothing
/// depends on the size of the desktop's letters.
std::string textOf(const ShownWindow& window);

}  // namespace zephlin::contract
