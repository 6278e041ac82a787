#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Platform/Dispatch.h"

namespace zephlin {

/// The main queue of Grand Central Dispatch (dispatch(3)), which the main run loop drains in its
/// common modes.
class MacMainQueue final : public MainQueue {
 public:
  void post(std::function<void()> work) override;
  void postAfter(Delay delay, std::function<void()> work) override;
};

/// Queues of Grand Central Dispatch, and timers of the main run loop in its common modes.
class MacDispatch final : public Dispatch {
 public:
  MainQueue& mainQueue() override { return mainQueue_; }
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label,
                                               QualityOfService quality) override;
  std::unique_ptr<Timer> scheduleTimer(Interval interval, Tolerance tolerance,
                                       std::function<void()> tick) override;

 private:
  MacMainQueue mainQueue_;
};

}  // namespace zephlin
