#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zephlin {

/// How long from now, in seconds of monotonic time.
struct Delay {
  double seconds = 0;
};

/// The period of a repeating timer, in seconds of monotonic time.
struct Interval {
  double seconds = 0;
};

/// How late a timer may fire, in seconds, so that the system can save wake-ups.
struct Tolerance {
  double seconds = 0;
};

/// Wall time in seconds since 1 January 1970 UTC. It jumps when the clock is set.
struct WallTime {
  double secondsSince1970 = 0;
};

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
  /// Runs `work` on the main thread once the delay has passed. Never early. Main thread.
  virtual void postAfter(Delay delay, std::function<void()> work) = 0;
};

/// Work that can be called off until it has begun. Main thread.
class WorkItem {
 public:
  explicit WorkItem(std::function<void()> work) : work_(std::move(work)) {}

  /// An item that was cancelled before never runs.
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

enum class QualityOfService { Utility };

/// Runs work off the main thread, one piece at a time, in the order in which it was posted.
/// Destroying it does not wait: what was posted still runs.
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
  virtual MainQueue& mainQueue() = 0;
  virtual std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label,
                                                       QualityOfService quality) = 0;
  /// The first tick comes one interval from now.
  virtual std::unique_ptr<Timer> scheduleTimer(Interval interval, Tolerance tolerance,
                                               std::function<void()> tick) = 0;
};

}  // namespace zephlin
