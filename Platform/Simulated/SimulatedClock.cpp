#include "Platform/Simulated/SimulatedClock.h"

namespace zephlin {

WallTime SimulatedClock::now() const {
  return WallTime(Seconds(secondsFromTicks(loop_.now() + offset_)));
}

void SimulatedClock::setWallTime(WallTime time) {
  offset_ = ticksFromSeconds(time.time_since_epoch().count()) - loop_.now();
}

}  // namespace zephlin
