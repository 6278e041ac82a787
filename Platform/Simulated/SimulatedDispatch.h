#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Platform/Dispatch.h"
#include "Platform/Simulated/VirtualLoop.h"

namespace zephlin {

/// How late delayed work and timers are delivered, beyond their deadlines. Punctual at first.
class SimulatedLateness {
 public:
  /// The same for all.
  void setExactly(Delay delay);
  /// Each delivery draws its own, from 0 to `most`.
  void setAtRandom(Delay most, std::uint64_t seed);
  /// Timers are this share (0 to 1) of their tolerance late, besides.
  void setTimerShareOfTolerance(double share) { shareOfTolerance_ = share; }

  VirtualTicks ofDelayedWork();
  VirtualTicks ofTimer(Tolerance tolerance);

 private:
  VirtualTicks exact_ = 0;
  VirtualTicks maximumJitter_ = 0;
  double shareOfTolerance_ = 0;
  std::mt19937_64 random_;
};

class SimulatedMainQueue final : public MainQueue {
 public:
  SimulatedMainQueue(VirtualLoop& loop, SimulatedLateness& lateness)
      : loop_(loop), lateness_(lateness) {}

  void post(std::function<void()> work) override;
  void postAfter(Delay delay, std::function<void()> work) override;

 private:
  VirtualLoop& loop_;
  SimulatedLateness& lateness_;
};

struct SimulatedTimerRecord {
  Interval interval;
  Tolerance tolerance;
};

struct SimulatedSerialQueueRecord {
  std::string label;
  QualityOfService quality = QualityOfService::Utility;
};

class SimulatedDispatch final : public Dispatch {
 public:
  explicit SimulatedDispatch(VirtualLoop& loop);

  SimulatedMainQueue& mainQueue() override { return mainQueue_; }
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label,
                                               QualityOfService quality) override;
  std::unique_ptr<Timer> scheduleTimer(Interval interval, Tolerance tolerance,
                                       std::function<void()> tick) override;

  SimulatedLateness& lateness() { return lateness_; }

  /// In the order in which they were made, those that have ended left out.
  [[nodiscard]] std::vector<SimulatedTimerRecord> liveTimers() const;
  [[nodiscard]] std::vector<SimulatedSerialQueueRecord> liveSerialQueues() const;

 private:
  VirtualLoop& loop_;
  SimulatedLateness lateness_;
  SimulatedMainQueue mainQueue_;
  std::vector<std::weak_ptr<const SimulatedTimerRecord>> timers_;
  std::vector<std::weak_ptr<const SimulatedSerialQueueRecord>> serialQueues_;
};

}  // namespace zephlin
