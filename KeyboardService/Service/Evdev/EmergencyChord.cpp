#include "KeyboardService/Service/Evdev/EmergencyChord.h"

namespace zephlin {

bool EmergencyChord::completes(const InputEvent& event) {
  if (event.type != EV_KEY || event.value == KeyRepeated) {
    return false;
  }
  const bool isDown = event.value == KeyPressed;
  switch (event.code) {
    case KEY_BACKSPACE:
      backspace_ = isDown;
      break;
    case KEY_ENTER:
      enter_ = isDown;
      break;
    case KEY_ESC:
      escape_ = isDown;
      break;
    default:
      return false;
  }
  return backspace_ && enter_ && escape_;
}

}  // namespace zephlin
