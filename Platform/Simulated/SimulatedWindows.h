#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Window.h"

namespace zephlin {

/// A window as its program and its user see it. Lives as long as the program's own object or
/// whoever holds it.
class SimulatedWindow {
 public:
  SimulatedWindow(WindowDescription windowDescription, std::shared_ptr<View> content);
  SimulatedWindow(const SimulatedWindow&) = delete;
  SimulatedWindow& operator=(const SimulatedWindow&) = delete;
  ~SimulatedWindow() = default;

  const WindowDescription description;
  const std::shared_ptr<View> contentView;
  std::weak_ptr<WindowDelegate> delegate;
  bool isShown = false;
  /// How often each was asked for.
  std::size_t centerings = 0;
  std::size_t orderFronts = 0;
  std::size_t fittings = 0;

  /// The user closes the window: its delegate is told once, and then it hides. Nothing where it is
  /// hidden already.
  void close();
  /// The texts of all labels, outside in, top to bottom.
  [[nodiscard]] std::vector<std::string> labelTexts() const;
  /// Pushes the button with this title. False where there is none, or the window is hidden.
  bool pressButton(const std::string& title);

  /// The program has asked for its changes to be displayed.
  bool needsDisplay = true;
  /// Updates the layers that need display, if the program has asked and the window is shown.
  void displayIfNeeded();
  /// The same, asked or not, shown or not.
  void display();
};

/// Calls `visit` for the view and all below it: subviews, then arranged subviews.
void forEachView(View& view, const std::function<void(View&)>& visit);

class SimulatedWindows final : public WindowServer {
 public:
  std::unique_ptr<Window> makeWindow(const WindowDescription& description,
                                     std::shared_ptr<View> contentView) override;

  /// Whether contentAsPng gives anything.
  void setDrawable(bool drawable) { *drawable_ = drawable; }

  /// The windows that exist, in the order in which they were made.
  [[nodiscard]] std::vector<std::shared_ptr<SimulatedWindow>> windows() const;
  /// The newest window; std::logic_error where there is none.
  [[nodiscard]] std::shared_ptr<SimulatedWindow> window() const;
  [[nodiscard]] std::size_t made() const { return made_; }

  /// What the desktop does at each turn of the loop.
  void displayIfNeeded();

 private:
  std::shared_ptr<bool> drawable_ = std::make_shared<bool>(true);
  std::vector<std::weak_ptr<SimulatedWindow>> windows_;
  std::size_t made_ = 0;
};

}  // namespace zephlin
