#include "Tests/Contract/ShownWindow.h"

#include <cmath>
#include <sstream>

namespace zephlin::contract {

namespace {

using Kind = ShownView::Kind;

std::string nameOf(ColorRole role) {
  switch (role) {
    case ColorRole::Label:
      return "label";
    case ColorRole::SecondaryLabel:
      return "secondary label";
    case ColorRole::TertiaryLabel:
      return "tertiary label";
    case ColorRole::Separator:
      return "separator";
    case ColorRole::ControlBackground:
      return "control background";
    case ColorRole::SystemGreen:
      return "system green";
    case ColorRole::SystemRed:
      return "system red";
    case ColorRole::SystemOrange:
      return "system orange";
  }
  return "?";
}

std::string nameOf(FontWeight weight) {
  switch (weight) {
    case FontWeight::Regular:
      return "regular";
    case FontWeight::Semibold:
      return "semibold";
    case FontWeight::Bold:
      return "bold";
  }
  return "?";
}

std::string number(double value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

std::string points(double length) {
  return std::to_string(std::lround(length));
}

std::string nameOf(const std::optional<Color>& color) {
  if (!color) {
    return "unknown colour";
  }
  return nameOf(color->role) + (color->alpha == 1 ? "" : " at " + number(color->alpha));
}

std::string look(const Layer& layer) {
  std::string text =
      "box of " + nameOf(layer.backgroundColor) + ", radius " + points(layer.cornerRadius);
  if (layer.borderWidth > 0) {
    text += ", border of " + nameOf(layer.borderColor) + ", " + points(layer.borderWidth);
  }
  return text;
}

std::string look(const ShownView& view) {
  switch (view.kind) {
    case Kind::View:
      return view.layer ? look(*view.layer) : "view";
    case Kind::Row:
      return "row";
    case Kind::Column:
      return "column";
    case Kind::Button:
      return "button \"" + view.text + "\"";
    case Kind::Label:
      break;
  }
  const bool isBlank = view.text.find_first_not_of(' ') == std::string::npos;
  return std::string(view.wraps ? "wrapping label" : "label") + " \"" + view.text + "\", " +
         number(view.font.pointSize) + " " + nameOf(view.font.weight) +
         (view.font.monospacedDigits ? " monospaced digits" : "") +
         (isBlank ? "" : ", " + nameOf(view.textColor)) +
         (view.alignment == TextAlignment::Center ? ", text centred" : "");
}

double right(const ShownView& view) {
  return view.left + view.width;
}

double bottom(const ShownView& view) {
  return view.top + view.height;
}

/// The view that contains a view and the views next to it; each may be missing.
struct Neighbours {
  const ShownView* parent = nullptr;
  const ShownView* before = nullptr;
  const ShownView* after = nullptr;
};

std::string acrossColumn(const ShownView& view, const ShownView& parent) {
  const double fromTheLeft = view.left - parent.left;
  const double fromTheRight = right(parent) - right(view);
  const bool isAsWideAsItsText = view.kind == Kind::Label || view.kind == Kind::Button;
  if (isAsWideAsItsText && fromTheLeft >= 0 && fromTheRight >= 0) {
    return std::abs(fromTheLeft - fromTheRight) <= 2 ? "centred" : "not centred";
  }
  return points(view.width) + " wide, " + points(fromTheLeft) + " from the left";
}

std::string placeInColumn(const ShownView& view, const Neighbours& near) {
  const ShownView& parent = *near.parent;
  std::string place = near.before == nullptr ? points(view.top - parent.top) + " from the top"
                                             : points(view.top - bottom(*near.before)) + " below";
  place += ", " + acrossColumn(view, parent);
  return near.after == nullptr
             ? place + ", " + points(bottom(parent) - bottom(view)) + " from the bottom"
             : place;
}

std::string placeInRow(const ShownView& view, const Neighbours& near) {
  const ShownView& parent = *near.parent;
  std::string place = near.before == nullptr
                          ? points(view.left - parent.left) + " from the left"
                          : points(view.left - right(*near.before)) + " further right";
  place += ", " + points(view.width) + " wide";
  return near.after == nullptr
             ? place + ", " + points(right(parent) - right(view)) + " from the right"
             : place;
}

std::string place(const ShownView& view, const Neighbours& near) {
  if (near.parent == nullptr) {
    return points(view.width) + " wide";
  }
  const ShownView& parent = *near.parent;
  switch (parent.kind) {
    case Kind::Column:
      return placeInColumn(view, near);
    case Kind::Row:
      return placeInRow(view, near);
    default:
      return "inside by " + points(view.top - parent.top) + " " + points(view.left - parent.left) +
             " " + points(bottom(parent) - bottom(view)) + " " +
             points(right(parent) - right(view));
  }
}

Neighbours neighboursOf(const std::vector<ShownView>& views, std::size_t index) {
  Neighbours near;
  const int depth = views[index].depth;
  for (std::size_t i = index; i-- > 0 && near.parent == nullptr;) {
    if (views[i].depth < depth) {
      near.parent = &views[i];
    } else if (views[i].depth == depth && near.before == nullptr) {
      near.before = &views[i];
    }
  }
  for (std::size_t i = index + 1; i < views.size() && views[i].depth >= depth; ++i) {
    if (views[i].depth == depth) {
      near.after = &views[i];
      break;
    }
  }
  return near;
}

}  // namespace

std::string textOf(const ShownWindow& window) {
  std::string text = std::string("window, ") + (window.isFloating ? "floating" : "not floating") +
                     (window.isResizable ? ", resizable" : ", of fixed size") +
                     (window.isCentered ? ", centred on the screen\n" : "\n");
  for (std::size_t index = 0; index < window.views.size(); ++index) {
    const ShownView& view = window.views[index];
    text += std::string(static_cast<std::size_t>(view.depth + 1) * 2, ' ') + look(view) + "; " +
            place(view, neighboursOf(window.views, index)) + "\n";
  }
  return text;
}

}  // namespace zephlin::contract
