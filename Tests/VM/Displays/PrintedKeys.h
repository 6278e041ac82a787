#pragma once

#include <libevdev/libevdev.h>

#include "Tests/VM/JudgeSeat.h"

namespace zephlin {

/// Prints what a window is told of a key, in CapsLockJudge's form.
inline void printKey(std::uint32_t code, bool isDown) {
  print("key %s %d", libevdev_event_code_get_name(EV_KEY, code), isDown ? 1 : 0);
}

/// Prints what a press means: the name of its symbol, and its text if it can be seen.
inline void printMeaning(const char* symbol, const char* text) {
  print("symbol %s", symbol);
  if (text[0] > ' ') {
    print("text %s", text);
  }
}

}  // namespace zephlin
