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
  void postAfter(Seconds delay, std::function<void()> work) override;
};

/// Queues of Grand Central Dispatch, and timers of the main run loop in its common modes.
class MacDispatch final : public Dispatch {
 public:
  std::shared_ptr<MainQueue> mainQueue() override { return std::make_shared<MacMainQueue>(); }
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;
  std::unique_ptr<Timer> scheduleTimer(Seconds interval, Seconds tolerance,
                                       std::function<void()> tick) override;
};

}  // namespace zephlin
