#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Simulated/SimulatedInput.h"
#include "Platform/Simulated/VirtualLoop.h"
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

  /// The user closes the window: its delegate is called once, and then it hides. Nothing if it is
  /// hidden already.
  void close();
  /// The texts of all labels, outside in, top to bottom.
  [[nodiscard]] std::vector<std::string> labelTexts() const;
  /// Pushes the button with this title. False if there is none, or the window is hidden.
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
  /// The newest window; std::logic_error if there is none.
  [[nodiscard]] std::shared_ptr<SimulatedWindow> window() const;
  [[nodiscard]] std::size_t made() const { return made_; }

  /// What the desktop does at each turn of the loop.
  void displayIfNeeded();

 private:
  std::shared_ptr<bool> drawable_ = std::make_shared<bool>(true);
  std::vector<std::weak_ptr<SimulatedWindow>> windows_;
  std::size_t made_ = 0;
};

class SimulatedAlerts final : public AlertPresenter {
 public:
  SimulatedAlerts(VirtualLoop& loop, SimulatedTracking& tracking)
      : loop_(loop), tracking_(tracking) {}

  /// Pumps the loop until the alert was dismissed. Throws std::logic_error if no event is left
  /// or a virtual day has passed, since nothing can dismiss it then.
  void runModal(const Alert& alert) override;

  /// Dismisses the innermost alert that is modal. From an event.
  void dismissAlert();
  /// Dismisses the alert that is modal at that time from now, if there is one.
  void dismissAlertAfter(double seconds);

  [[nodiscard]] bool isModal() const { return tracking_.modalAlerts > 0; }
  /// All that were shown.
  [[nodiscard]] const std::vector<Alert>& shown() const { return shown_; }
  /// Called each time when an alert has become modal.
  std::function<void()> onShown;

 private:
  VirtualLoop& loop_;
  SimulatedTracking& tracking_;
  std::vector<Alert> shown_;
  int dismissed_ = 0;
};

}  // namespace zephlin
