#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <functional>

#include "Platform/Dispatch.h"

namespace zephlin {

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

}  // namespace zephlin
