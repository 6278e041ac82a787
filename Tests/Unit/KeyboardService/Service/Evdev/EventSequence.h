#pragma once

#include <stdexcept>
#include <vector>

#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

/// Throws std::logic_error unless what has to hold does.
inline void requireThat(bool condition, const char* what) {
  if (!condition) {
    throw std::logic_error(what);
  }
}

inline bool isLeftOut(const InputEvent& event) {
  return isCapsLock(event) || (event.type == EV_KEY && event.value == KeyRepeated);
}

/// Without the ends of frames, Caps Lock, repetitions, and the scan codes right before these two.
inline std::vector<InputEvent> others(const std::vector<InputEvent>& events) {
  std::vector<InputEvent> result;
  for (auto event = events.begin(); event != events.end(); ++event) {
    const bool announcesLeftOut =
        isScanCode(*event) && event + 1 != events.end() && isLeftOut(event[1]);
    if (event->type != EV_SYN && !isLeftOut(*event) && !announcesLeftOut) {
      result.push_back(*event);
    }
  }
  return result;
}

}  // namespace zephlin
