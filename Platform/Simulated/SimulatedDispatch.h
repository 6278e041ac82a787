#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Dispatch.h"
#include "Platform/Simulated/VirtualLoop.h"

namespace zephlin {

/// How late delayed work and timers are delivered, beyond their deadlines. Punctual at first.
class SimulatedLateness {
 public:
  /// The same for all.
  void setExactly(Seconds delay);
  /// Each delivery draws its own, from 0 to `maximum`.
  void setAtRandom(Seconds maximum, std::uint64_t seed);
  /// Timers are also late by this share (0 to 1) of their tolerance.
  void setTimerShareOfTolerance(double share) { shareOfTolerance_ = share; }

  VirtualTicks ofDelayedWork();
  VirtualTicks ofTimer(Seconds tolerance);

 private:
  VirtualTicks exact_ = 0;
  VirtualTicks maximumJitter_ = 0;
  double shareOfTolerance_ = 0;
  std::mt19937_64 random_;
};

class SimulatedMainQueue final : public MainQueue {
 public:
  explicit SimulatedMainQueue(std::shared_ptr<VirtualLoop> loop) : loop_(std::move(loop)) {}

  void post(std::function<void()> work) override;
  void postAfter(Seconds delay, std::function<void()> work) override;

  SimulatedLateness lateness;

 private:
  std::shared_ptr<VirtualLoop> loop_;
};

struct SimulatedTimerRecord {
  Seconds interval{};
  Seconds tolerance{};
};

class SimulatedDispatch final : public Dispatch {
 public:
  explicit SimulatedDispatch(const std::shared_ptr<VirtualLoop>& loop);

  std::shared_ptr<MainQueue> mainQueue() override { return mainQueue_; }
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;
  std::unique_ptr<Timer> scheduleTimer(Seconds interval, Seconds tolerance,
                                       std::function<void()> tick) override;

  SimulatedLateness& lateness() { return mainQueue_->lateness; }

  /// Those that have not ended, in the order in which they were made; queues by their label.
  [[nodiscard]] std::vector<SimulatedTimerRecord> liveTimers() const;
  [[nodiscard]] std::vector<std::string> liveSerialQueues() const;

 private:
  VirtualLoop& loop_;
  std::shared_ptr<SimulatedMainQueue> mainQueue_;
  std::vector<std::weak_ptr<const SimulatedTimerRecord>> timers_;
  std::vector<std::weak_ptr<const std::string>> serialQueues_;
};

}  // namespace zephlin
