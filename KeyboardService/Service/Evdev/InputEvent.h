#pragma once

#include <linux/input-event-codes.h>

#include <cstdint>

namespace zephlin {

/// One event of a Linux input device without its time, as in linux/input.h.
struct InputEvent {
  std::uint16_t type = 0;
  std::uint16_t code = 0;
  std::int32_t value = 0;

  bool operator==(const InputEvent&) const = default;
};

/// The values of an EV_KEY event.
enum KeyValue : std::int32_t { KeyReleased = 0, KeyPressed = 1, KeyRepeated = 2 };

constexpr InputEvent endOfFrame{EV_SYN, SYN_REPORT, 0};

/// Whether the event closes what has come since the last one. After SYN_DROPPED the kernel's queue
/// has overflowed and begins anew (Documentation/input/event-codes.rst).
constexpr bool endsFrame(const InputEvent& event) {
  return event.type == EV_SYN && (event.code == SYN_REPORT || event.code == SYN_DROPPED);
}

constexpr bool isCapsLock(const InputEvent& event) {
  return event.type == EV_KEY && event.code == KEY_CAPSLOCK;
}

constexpr bool isScanCode(const InputEvent& event) {
  return event.type == EV_MSC && event.code == MSC_SCAN;
}

}  // namespace zephlin
