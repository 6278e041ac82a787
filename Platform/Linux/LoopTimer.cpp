#include "Platform/Linux/LoopTimer.h"

#include <algorithm>
#include <utility>

namespace zephlin {

namespace {

using std::chrono::nanoseconds;

nanoseconds monotonicNow() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

}  // namespace

nanoseconds coalescedFireTime(nanoseconds due, nanoseconds tolerance) {
  if (tolerance <= nanoseconds::zero()) {
    return due;
  }
  const nanoseconds beyond = due % tolerance;
  return beyond == nanoseconds::zero() ? due : due - beyond + tolerance;
}

LoopTimer::LoopTimer(Seconds interval, Seconds tolerance, std::function<void()> tick)
    : interval_(std::chrono::duration_cast<nanoseconds>(interval)),
      tolerance_(std::chrono::duration_cast<nanoseconds>(tolerance)),
      tick_(std::move(tick)),
      due_(monotonicNow() + interval_) {
  // Qt's coarse timers may be early.
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.setSingleShot(true);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { fire(); });
  arm();
}

void LoopTimer::arm() {
  const nanoseconds wait = coalescedFireTime(due_, tolerance_) - monotonicNow();
  timer_.start(std::chrono::ceil<std::chrono::milliseconds>(std::max(wait, nanoseconds::zero())));
}

void LoopTimer::fire() {
  const nanoseconds now = monotonicNow();
  due_ += interval_ * (1 + (now - due_) / interval_);
  arm();
  // A copy, since the tick may destroy the timer.
  const std::function<void()> tick = tick_;
  tick();
}

}  // namespace zephlin
