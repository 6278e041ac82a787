#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zephlin {

/// A window's content as plain data: portable code builds a tree of views once, and the platform
/// shows each kind in its own way. After that only a label's text and colour and a box's layer can
/// change: whoever changes them asks the window to display them (Window::displayIfNeeded). Lengths
/// are in points. Main thread throughout.

enum class ColorRole {
  Label,
  SecondaryLabel,
  TertiaryLabel,
  Separator,
  ControlBackground,
  SystemGreen,
  SystemRed,
  SystemOrange,
};

/// A colour by its meaning; the platform knows what it looks like, light and dark.
struct Color {
  ColorRole role = ColorRole::Label;
  double alpha = 1;
  bool operator==(const Color&) const = default;
};

enum class FontWeight { Regular, Semibold, Bold };

/// The system's font.
struct Font {
  double pointSize = 13;
  FontWeight weight = FontWeight::Regular;
  bool monospacedDigits = false;
  bool operator==(const Font&) const = default;
};

enum class TextAlignment { Natural, Center };

struct EdgeInsets {
  double top = 0;
  double left = 0;
  double bottom = 0;
  double right = 0;
  bool operator==(const EdgeInsets&) const = default;
};

/// What a layer-backed box shows.
struct Layer {
  double cornerRadius = 0;
  Color backgroundColor;
  double borderWidth = 0;
  std::optional<Color> borderColor;
  bool operator==(const Layer&) const = default;
};

class Box;
class Label;
class Button;
class StackView;

/// Every kind of view there is: what shows or searches a tree handles each of them.
class ViewVisitor {
 public:
  virtual ~ViewVisitor() = default;
  virtual void visit(Box& box) = 0;
  virtual void visit(Label& label) = 0;
  virtual void visit(Button& button) = 0;
  virtual void visit(StackView& stack) = 0;
};

class View {
 public:
  View(const View&) = delete;
  View& operator=(const View&) = delete;
  virtual ~View() = default;

  virtual void accept(ViewVisitor& visitor) = 0;

  const std::optional<double> fixedWidth;
  /// Whether the view has changed since it was displayed.
  bool needsDisplay = true;

 protected:
  explicit View(std::optional<double> width) : fixedWidth(width) {}
};

/// Holds views at fixed insets. With a layer, it has a background and a border.
class Box : public View {
 public:
  struct Subview {
    std::shared_ptr<View> view;
    EdgeInsets insets;
  };

  explicit Box(std::optional<double> width = std::nullopt) : View(width) {}

  void accept(ViewVisitor& visitor) final { visitor.visit(*this); }

  /// Adds a child whose edges are these distances inside this view's.
  void addSubview(std::shared_ptr<View> child, const EdgeInsets& insets) {
    subviews_.push_back({std::move(child), insets});
  }
  [[nodiscard]] const std::vector<Subview>& subviews() const { return subviews_; }

  /// Called by the platform before it shows the layer of a box that needs display.
  virtual void updateLayer() {}

  std::optional<Layer> layer;

 private:
  std::vector<Subview> subviews_;
};

/// Text that cannot be edited.
class Label final : public View {
 public:
  enum class Kind { SingleLine, Wrapping };

  struct Style {
    Kind kind = Kind::SingleLine;
    Font font = {};
    TextAlignment alignment = TextAlignment::Natural;
    /// Whether screen readers say what it has changed to, where the platform lets them.
    bool isAnnounced = false;
    /// Where a wrapping label breaks its lines.
    std::optional<double> preferredMaxLayoutWidth = std::nullopt;
  };

  explicit Label(std::string text) : Label(std::move(text), Style()) {}
  Label(std::string text, const Style& labelStyle, Color textColor = {})
      : View(std::nullopt), style(labelStyle), text_(std::move(text)), textColor_(textColor) {}

  void accept(ViewVisitor& visitor) override { visitor.visit(*this); }

  [[nodiscard]] const std::string& text() const { return text_; }
  void setText(std::string text) {
    text_ = std::move(text);
    needsDisplay = true;
  }
  [[nodiscard]] Color textColor() const { return textColor_; }
  void setTextColor(Color color) {
    textColor_ = color;
    needsDisplay = true;
  }

  const Style style;

 private:
  std::string text_;
  Color textColor_;
};

/// A push button with rounded bezel, of regular size.
class Button final : public View {
 public:
  Button(std::string buttonTitle, std::function<void()> buttonAction)
      : View(std::nullopt), title(std::move(buttonTitle)), action(std::move(buttonAction)) {}

  void accept(ViewVisitor& visitor) override { visitor.visit(*this); }

  const std::string title;
  const std::function<void()> action;
};

/// Views in a row or a column, centred across it.
class StackView final : public View {
 public:
  enum class Orientation { Horizontal, Vertical };
  enum class Distribution { Natural, FillEqually };

  struct Layout {
    Orientation orientation = Orientation::Vertical;
    Distribution distribution = Distribution::Natural;
    /// The distance between a view and the next one.
    double spacing = 0;
    EdgeInsets edgeInsets = {};
  };

  explicit StackView(const Layout& stackLayout, std::optional<double> width = std::nullopt)
      : View(width), layout(stackLayout) {}

  void accept(ViewVisitor& visitor) override { visitor.visit(*this); }

  /// A custom spacing replaces the layout's behind this view.
  void addArrangedSubview(std::shared_ptr<View> view,
                          std::optional<double> customSpacing = std::nullopt) {
    arranged_.push_back({std::move(view), customSpacing.value_or(layout.spacing)});
  }

  struct Arranged {
    std::shared_ptr<View> view;
    /// To the next view.
    double spacingAfter = 0;
  };
  [[nodiscard]] const std::vector<Arranged>& arrangedSubviews() const { return arranged_; }

  const Layout layout;

 private:
  std::vector<Arranged> arranged_;
};

}  // namespace zephlin
