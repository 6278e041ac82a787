#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zephlin {

/// A window's content as plain data: portable code builds a tree of these once, and the platform
/// realises each kind generically. Lengths are in points. Main thread throughout.

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

/// What a layer-backed view shows.
struct Layer {
  double cornerRadius = 0;
  Color backgroundColor;
  double borderWidth = 0;
  std::optional<Color> borderColor;
  bool operator==(const Layer&) const = default;
};

class View {
 public:
  View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;
  virtual ~View() = default;

  /// Adds a child whose edges are these distances inside this view's.
  void addSubview(std::shared_ptr<View> child, const EdgeInsets& insets);

  struct Subview {
    std::shared_ptr<View> view;
    EdgeInsets insets;
  };
  [[nodiscard]] const std::vector<Subview>& subviews() const { return subviews_; }

  /// Asks the platform to show the view anew, soon.
  void setNeedsDisplay();
  /// Called by the platform for a view that has a layer, before it shows it anew.
  virtual void updateLayer() {}

  std::optional<double> fixedWidth;
  /// Present for a layer-backed view.
  std::optional<Layer> layer;
  bool needsDisplay = true;
  /// Set by the platform that shows the view; called when it needs display.
  std::function<void()> onNeedsDisplay;

 private:
  std::vector<Subview> subviews_;
};

/// Text that cannot be edited.
class Label final : public View {
 public:
  enum class Kind { SingleLine, Wrapping };

  explicit Label(std::string text, Kind labelKind = Kind::SingleLine)
      : kind(labelKind), text_(std::move(text)) {}

  [[nodiscard]] const std::string& text() const { return text_; }
  void setText(std::string text);
  [[nodiscard]] Color textColor() const { return textColor_; }
  void setTextColor(Color color);

  const Kind kind;
  Font font;
  TextAlignment alignment = TextAlignment::Natural;
  /// Where a wrapping label breaks its lines.
  std::optional<double> preferredMaxLayoutWidth;

 private:
  std::string text_;
  Color textColor_;
};

/// A push button with rounded bezel, of regular size.
class Button final : public View {
 public:
  Button(std::string buttonTitle, std::function<void()> buttonAction)
      : title(std::move(buttonTitle)), action(std::move(buttonAction)) {}

  std::string title;
  std::function<void()> action;
};

/// Views in a row or a column, centred across it.
class StackView final : public View {
 public:
  enum class Orientation { Horizontal, Vertical };
  enum class Distribution { Natural, FillEqually };

  explicit StackView(Orientation stackOrientation) : orientation(stackOrientation) {}

  void addArrangedSubview(std::shared_ptr<View> view);
  /// Replaces `spacing` behind a view that was added.
  void setCustomSpacing(double spacingAfter, const View& view);

  [[nodiscard]] const std::vector<std::shared_ptr<View>>& arrangedSubviews() const {
    return arranged_;
  }
  /// The distance between a view and the next one.
  [[nodiscard]] double spacingAfter(const View& view) const;

  const Orientation orientation;
  Distribution distribution = Distribution::Natural;
  double spacing = 0;
  EdgeInsets edgeInsets;

 private:
  std::vector<std::shared_ptr<View>> arranged_;
  std::map<const View*, double> customSpacing_;
};

class WindowDelegate {
 public:
  virtual ~WindowDelegate() = default;
  /// The user closes the window. It is still shown, must not be destroyed now, and hides when this
  /// returns.
  virtual void windowWillClose() = 0;
};

/// With Quartz's value.
enum class WindowLevel { Floating = 3 };

/// How a window looks: titled, closable, of fixed size.
struct WindowDescription {
  std::string title;
  double contentWidth = 0;
  double contentHeight = 0;
  WindowLevel level = WindowLevel::Floating;
};

/// A window that hides when it is closed and can be shown again.
class Window {
 public:
  virtual ~Window() = default;
  /// The delegate is not owned.
  virtual void setDelegate(std::weak_ptr<WindowDelegate> delegate) = 0;
  /// Lays the content out and makes the window as large as the content wants to be.
  virtual void setContentSizeToFit() = 0;
  /// On the screen.
  virtual void center() = 0;
  /// Shows the window, in front of the others and with the keyboard; one that is shown already
  /// comes to the front. The system may refuse it both, and tells nothing of that.
  virtual void makeKeyAndOrderFront() = 0;
  /// The content view alone, without title bar and frame; absent where it cannot be drawn.
  virtual std::optional<std::string> contentAsPng() = 0;
};

class WindowServer {
 public:
  virtual ~WindowServer() = default;
  /// Not shown yet.
  virtual std::unique_ptr<Window> makeWindow(const WindowDescription& description,
                                             std::shared_ptr<View> contentView) = 0;
};

}  // namespace zephlin
