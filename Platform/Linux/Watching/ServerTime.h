#pragma once

#include <chrono>
#include <cstdint>

#include "Platform/Keyboard.h"

namespace zephlin {

/// When a display server says that an event happened. Servers count milliseconds from a moment of
/// their own choice, in 32 bits, so they start again after 50 days; these times go on.
inline EventTime serverTime(std::uint32_t count) {
  const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
  const auto age = static_cast<std::int32_t>(static_cast<std::uint32_t>(now.count()) - count);
  return now - std::chrono::milliseconds(age);
}

}  // namespace zephlin
