#pragma once

#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

/// Backspace, Enter and Escape held together on one keyboard: whoever cannot type any more gets the
/// keyboard back by them.
class EmergencyChord {
 public:
  /// Whether this event completes the chord.
  bool completes(const InputEvent& event);

 private:
  bool backspace_ = false;
  bool enter_ = false;
  bool escape_ = false;
};

}  // namespace zephlin
