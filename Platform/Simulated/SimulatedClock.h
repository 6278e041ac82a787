#pragma once

#include "Platform/Dispatch.h"
#include "Platform/Simulated/VirtualLoop.h"

namespace zephlin {

/// Wall time: it passes with monotonic time and can be moved without it. At first it is
/// 1 January 2024.
class SimulatedClock final : public Clock {
 public:
  explicit SimulatedClock(const VirtualLoop& loop) : loop_(loop) {}

  [[nodiscard]] WallTime now() const override;

  void setWallTime(WallTime time);
  /// Negative seconds move it back.
  void jump(double seconds) { offset_ += ticksFromSeconds(seconds); }

 private:
  const VirtualLoop& loop_;
  VirtualTicks offset_ = 1'704'067'200 * virtualTicksPerSecond;
};

}  // namespace zephlin
