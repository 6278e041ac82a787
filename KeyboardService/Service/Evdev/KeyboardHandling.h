#pragma once

#include <functional>

#include "KeyboardService/Service/Evdev/CapsLockRewriter.h"
#include "KeyboardService/Service/KeyboardState.h"

namespace zephlin {

/// Makes Caps Lock of one keyboard follow a rule. It is made, used and destroyed on the thread of
/// one EventLoop. Nothing that the keyboard does makes it throw: trouble is a state. While it is
/// not in force it tries again by itself. The destructor leaves the keyboard to the system, with no
/// key stuck.
class KeyboardHandling {
 public:
  /// Called on that thread, from the constructor on, whenever the state changes and after each
  /// check. It may not destroy the handling.
  using Report = std::function<void(const KeyboardState&)>;

  KeyboardHandling() = default;
  KeyboardHandling(const KeyboardHandling&) = delete;
  KeyboardHandling& operator=(const KeyboardHandling&) = delete;
  virtual ~KeyboardHandling() = default;

  /// Applies to later presses.
  virtual void setRule(CapsLockRule rule) = 0;

  /// Asks the kernel anew whether it is in force, tries again if it is not, and reports.
  virtual void check() = 0;
};

}  // namespace zephlin
