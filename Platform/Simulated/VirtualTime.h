#pragma once

#include <cmath>
#include <cstdint>

namespace zephlin {

/// Nanoseconds of the virtual monotonic clock, which starts at 0.
using VirtualTicks = std::int64_t;

constexpr VirtualTicks virtualTicksPerSecond = 1'000'000'000;

inline VirtualTicks ticksFromSeconds(double seconds) {
  return std::llround(seconds * static_cast<double>(virtualTicksPerSecond));
}

inline double secondsFromTicks(VirtualTicks ticks) {
  return static_cast<double>(ticks) / static_cast<double>(virtualTicksPerSecond);
}

}  // namespace zephlin
