#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Views.h"

namespace zephlin {

class WindowDelegate {
 public:
  virtual ~WindowDelegate() = default;
  /// The user closes the window. It is still shown and hides when this returns; it must not be
  /// destroyed in here.
  virtual void windowWillClose() = 0;
};

/// A window that is titled, closable, of fixed size, and floats above ordinary ones.
struct WindowDescription {
  std::string title;
  double contentWidth = 0;
  double contentHeight = 0;
};

/// A window that hides when it is closed and can be shown again. Main thread.
class Window {
 public:
  virtual ~Window() = default;
  /// The delegate is not owned.
  virtual void setDelegate(std::weak_ptr<WindowDelegate> delegate) = 0;
  /// Lays the content out and makes the window as large as the content wants to be.
  virtual void setContentSizeToFit() = 0;
  /// Puts the window in the middle of the screen.
  virtual void center() = 0;
  /// Shows the window in front of the others and gives it the keyboard; a window that is already
  /// shown comes to the front. The system may refuse either without saying so.
  virtual void makeKeyAndOrderFront() = 0;
  /// Shows the views marked as needing display as they are now, and clears their marks. Layers
  /// follow soon, from the event loop.
  virtual void displayIfNeeded() = 0;
  /// The content view alone, without title bar and frame; absent if it cannot be drawn.
  virtual std::optional<std::string> contentAsPng() = 0;
};

/// Main thread.
class WindowServer {
 public:
  virtual ~WindowServer() = default;
  /// A window that is not shown yet.
  virtual std::unique_ptr<Window> makeWindow(const WindowDescription& description,
                                             std::shared_ptr<View> contentView) = 0;
};

/// An informational message with buttons, as plain data.
struct Alert {
  std::string messageText;
  /// A blank line separates paragraphs.
  std::string informativeText;
  std::vector<std::string> buttons;
};

/// Main thread.
class AlertPresenter {
 public:
  virtual ~AlertPresenter() = default;
  /// Shows the alert and returns when a button was chosen. Meanwhile the main queue and the timers
  /// go on, and the application's other windows take no input.
  virtual void runModal(const Alert& alert) = 0;
};

}  // namespace zephlin
