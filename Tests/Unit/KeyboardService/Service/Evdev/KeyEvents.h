#pragma once

#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

constexpr InputEvent key(std::uint16_t code, KeyValue value) {
  return {EV_KEY, code, value};
}

constexpr InputEvent capsLock(KeyValue value) {
  return key(KEY_CAPSLOCK, value);
}

}  // namespace zephlin
