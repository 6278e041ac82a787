#pragma once

#include <linux/input.h>
#include <unistd.h>

#include <array>

namespace zephlin {

/// Shows on a keyboard, as a compositor does, whether the lock is on. The descriptor is its event
/// device's. Returns false if that takes nothing, as one that another program grabs.
inline bool setCapsLockLed(int descriptor, bool lit) {
  std::array<input_event, 2> events{};
  events[0].type = EV_LED;
  events[0].code = LED_CAPSL;
  events[0].value = lit ? 1 : 0;
  events[1].type = EV_SYN;
  return ::write(descriptor, events.data(), sizeof events) == sizeof events;
}

}  // namespace zephlin
