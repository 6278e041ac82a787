#include "ZephlinCore/Watchdog.h"

#include <utility>

#include "ZephlinCore/SignalMask.h"

namespace zephlin {

Watchdog::Watchdog(std::chrono::steady_clock::time_point deadline, std::function<void()> work) {
  // The process's signals stay with the threads that expect them.
  const AllSignalsBlocked blocked;
  thread_ = std::thread([this, deadline, work = std::move(work)] {
    std::unique_lock lock(mutex_);
    if (!cancellation_.wait_until(lock, deadline, [this] { return cancelled_; })) {
      lock.unlock();
      work();
    }
  });
}

Watchdog::~Watchdog() {
  {
    const std::scoped_lock lock(mutex_);
    cancelled_ = true;
  }
  cancellation_.notify_one();
  thread_.join();
}

}  // namespace zephlin
