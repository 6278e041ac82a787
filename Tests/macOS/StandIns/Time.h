#pragma once

#include <cstdint>
#include <functional>

namespace standins {

/// Nanoseconds of monotonic time, which may stand still (Actions.h). Any thread.
std::uint64_t monotonicNanoseconds();
/// Any thread.
double wallTimeSince1970();

/// Runs the work on the main thread in the common modes at that monotonic time. Main thread.
void scheduleAt(std::uint64_t nanoseconds, std::function<void()> work);

}  // namespace standins
