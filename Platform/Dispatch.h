#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zephlin {

using Seconds = std::chrono::duration<double>;

/// Wall time. It jumps when the clock is set.
using WallTime = std::chrono::sys_time<Seconds>;

class Clock {
 public:
  virtual ~Clock() = default;
  /// Main thread.
  [[nodiscard]] virtual WallTime now() const = 0;
};

/// The queue of the main thread, which the application's event loop works off in order.
class MainQueue {
 public:
  virtual ~MainQueue() = default;
  /// Runs `work` on the main thread, after all that was posted before. Any thread.
  virtual void post(std::function<void()> work) = 0;
  /// Runs `work` on the main thread once the delay has passed in monotonic time. Never early. Main
  /// thread.
  virtual void postAfter(Seconds delay, std::function<void()> work) = 0;
};

/// Work that can be cancelled until it has begun. Main thread.
class WorkItem {
 public:
  explicit WorkItem(std::function<void()> work) : work_(std::move(work)) {}

  /// An item that is cancelled before it runs never runs.
  void cancel() { cancelled_ = true; }
  void perform() const {
    if (!cancelled_) {
      work_();
    }
  }

 private:
  std::function<void()> work_;
  bool cancelled_ = false;
};

/// Runs work off the main thread, one piece at a time, in the order in which it was posted, at a
/// lower priority than what the user waits for. Destroying it does not wait: what was posted still
/// runs.
class SerialQueue {
 public:
  virtual ~SerialQueue() = default;
  /// Any thread.
  virtual void post(std::function<void()> work) = 0;
};

/// A repeating timer of the main thread that also fires while a menu is open or an alert is modal.
/// Destroying it, even from its own callback, ends it.
class Timer {
 public:
  virtual ~Timer() = default;
};

/// Makes queues and timers. Main thread.
class Dispatch {
 public:
  virtual ~Dispatch() = default;
  /// Work on other threads may keep it beyond the platform; what is posted then never runs.
  virtual std::shared_ptr<MainQueue> mainQueue() = 0;
  virtual std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) = 0;
  /// The first tick comes one interval from now, in monotonic time. A tick may be late by the
  /// tolerance, so that the system can save wake-ups.
  virtual std::unique_ptr<Timer> scheduleTimer(Seconds interval, Seconds tolerance,
                                               std::function<void()> tick) = 0;
};

}  // namespace zephlin
