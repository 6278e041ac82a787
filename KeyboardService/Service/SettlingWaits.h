#pragma once

#include <chrono>
#include <functional>
#include <list>

#include "KeyboardService/Service/EventLoop.h"
#include "KeyboardService/Service/KeyboardRegistry.h"

namespace zephlin {

/// Lets requests wait until it is known of keyboards whether they do as asked. Requests that wait
/// for the same keyboard share one question to it.
class SettlingWaits {
 public:
  /// Long enough for a clone to be found by programs, short enough for whoever waits for hidutil.
  static constexpr std::chrono::seconds defaultLimit{2};

  /// The loop and the registry outlive this object, which takes the registry's reports.
  SettlingWaits(EventLoop& loop, KeyboardRegistry& registry, std::chrono::milliseconds limit);

  /// Calls `settled` once, when the keyboards have been asked and have settled or the limit has
  /// passed: within this call or from the loop.
  void ask(const KeyboardRegistry::IDs& keyboards, std::function<void()> settled);

 private:
  struct Wait {
    KeyboardRegistry::IDs keyboards;
    std::function<void()> settled;
    EventSource limit;
  };
  using Position = std::list<Wait>::iterator;

  void proceed();
  void giveUp(Position wait);

  EventLoop& loop_;
  KeyboardRegistry& registry_;
  std::chrono::milliseconds limit_;
  std::list<Wait> waits_;
  EventSource reported_;
};

}  // namespace zephlin
