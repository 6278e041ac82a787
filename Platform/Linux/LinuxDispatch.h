#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Dispatch.h"

namespace zephlin {

class SerialWorker;

class LinuxClock final : public Clock {
 public:
  [[nodiscard]] WallTime now() const override { return std::chrono::system_clock::now(); }
};

/// The main queue is Qt's event loop.
class LinuxMainQueue final : public MainQueue {
 public:
  void post(std::function<void()> work) override;
  void postAfter(Seconds delay, std::function<void()> work) override;

 private:
  QObject context_;
};

/// A repeating timer of Qt's event loop. Ticks are due at whole intervals from its start, even if
/// one of them was late; missed ticks are left out. Main thread.
class LoopTimer final : public Timer {
 public:
  LoopTimer(Seconds interval, Seconds tolerance, std::function<void()> tick);

  /// How long until the next tick.
  [[nodiscard]] std::chrono::milliseconds remainingTime() const {
    return timer_.remainingTimeAsDuration();
  }

 private:
  void arm();
  void fire();

  std::chrono::nanoseconds interval_;
  std::chrono::nanoseconds tolerance_;
  std::function<void()> tick_;
  std::chrono::nanoseconds due_;
  QTimer timer_;
};

/// When a timer fires that is due at `due` and may be late by `tolerance`, in monotonic time: at
/// the first whole multiple of the tolerance, so that the timers of all programs that do the same
/// wake the machine together.
std::chrono::nanoseconds coalescedFireTime(std::chrono::nanoseconds due,
                                           std::chrono::nanoseconds tolerance);

/// Made after the QApplication. Its destruction waits until all work of its serial queues has run.
class LinuxDispatch final : public Dispatch {
 public:
  LinuxDispatch();
  LinuxDispatch(const LinuxDispatch&) = delete;
  LinuxDispatch& operator=(const LinuxDispatch&) = delete;
  ~LinuxDispatch() override;

  std::shared_ptr<MainQueue> mainQueue() override { return mainQueue_; }
  /// Each queue has a thread, which carries the end of the label as its name and begins its first
  /// work after the event loop's next turn. The kernel schedules it like all others. Throws
  /// std::system_error if no thread can be started.
  std::unique_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;
  std::unique_ptr<Timer> scheduleTimer(Seconds interval, Seconds tolerance,
                                       std::function<void()> tick) override;

  /// Drops all work of the serial queues that has not begun, and sends SIGTERM to the child
  /// processes of the work that is running. Returns whether none is running.
  bool abandonSerialQueues();

 private:
  std::shared_ptr<LinuxMainQueue> mainQueue_ = std::make_shared<LinuxMainQueue>();
  std::vector<std::shared_ptr<SerialWorker>> workers_;
};

}  // namespace zephlin
