#pragma once

#include <utility>

#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

/// Decides when a watched Caps Lock is to be released early: when it is pressed while its LED is
/// lit. It takes all events that have arrived before it is asked, so that a press which the user
/// has ended meanwhile is not acted on.
class CapsLockWatch {
 public:
  /// What the LED is before the next event. Afterwards the events say so: at the time of a press
  /// the kernel's answer may be newer than the press.
  void setLed(bool lit) { isLit_ = lit; }

  void take(const InputEvent& event) {
    if (event.type == EV_LED && event.code == LED_CAPSL) {
      isLit_ = event.value != 0;
    } else if (isCapsLock(event) && event.value != KeyRepeated) {
      isReleaseDue_ = event.value == KeyPressed && isLit_;
    }
  }

  /// Whether the key is to be released now; true once for each press.
  bool takeRelease() { return std::exchange(isReleaseDue_, false); }

 private:
  bool isLit_ = false;
  bool isReleaseDue_ = false;
};

}  // namespace zephlin
