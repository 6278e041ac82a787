#pragma once

#include <algorithm>
#include <chrono>

namespace zephlin {

/// Keeps clients from occupying the service's thread without a pause. It is a real-time thread:
/// nobody else would get its processor, and the system would kill it in the end (RLIMIT_RTTIME,
/// setrlimit(2)). A burst of work is followed by as much rest.
class WorkBudget {
 public:
  using Time = std::chrono::nanoseconds;

  static constexpr Time burst = std::chrono::milliseconds(20);

  /// For how long to rest, when it is `now`, on any clock, and the thread has worked for `worked`
  /// altogether. To be asked again and again.
  Time rest(Time now, Time worked) {
    evenAt_ = std::max(evenAt_, asked_) + 2 * (worked - worked_);
    asked_ = now;
    worked_ = worked;
    if (evenAt_ - now >= burst) {
      restsUntil_ = evenAt_;
    }
    return std::max(restsUntil_ - now, Time::zero());
  }

 private:
  Time evenAt_{};  ///< When there has been as much rest as work.
  Time restsUntil_{};
  Time asked_{};
  Time worked_{};
};

}  // namespace zephlin
