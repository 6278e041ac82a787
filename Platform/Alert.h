#pragma once

#include <string>
#include <vector>

namespace zephlin {

enum class AlertStyle { Informational };

/// A message with buttons, as plain data.
struct Alert {
  std::string messageText;
  /// Paragraphs are parted by a blank line.
  std::string informativeText;
  AlertStyle style = AlertStyle::Informational;
  std::vector<std::string> buttons;
};

class AlertPresenter {
 public:
  virtual ~AlertPresenter() = default;
  /// Shows the alert and returns when a button was chosen. Meanwhile the main thread works off its
  /// queue and its timers, and the application's other windows take no input. Main thread.
  virtual void runModal(const Alert& alert) = 0;
};

}  // namespace zephlin
