#include "Platform/Simulated/SimulatedClock.h"

namespace zephlin {

WallTime SimulatedClock::now() const {
  return {secondsFromTicks(loop_.now() + offset_)};
}

void SimulatedClock::setWallTime(WallTime time) {
  offset_ = ticksFromSeconds(time.secondsSince1970) - loop_.now();
}

}  // namespace zephlin
