#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace zephlin {

/// Runs a piece of work once, at a deadline, on a thread of its own, unless it is cancelled before.
class Watchdog {
 public:
  /// `work` must not throw. Throws std::system_error when no thread can be had.
  Watchdog(std::chrono::steady_clock::time_point deadline, std::function<void()> work);
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
  /// Cancels. Work that already runs is waited for: afterwards it has run whole or not at all.
  ~Watchdog();

 private:
  std::mutex mutex_;
  std::condition_variable cancellation_;
  bool cancelled_ = false;
  std::thread thread_;
};

}  // namespace zephlin
