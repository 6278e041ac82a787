#pragma once

#include <mutex>

namespace zephlin {

/// Tells the runner that its watchdog killed the child. Shared by the two of them.
class TimeoutFlag {
 public:
  void set() {
    const std::scoped_lock guard(lock_);
    value_ = true;
  }
  [[nodiscard]] bool value() const {
    const std::scoped_lock guard(lock_);
    return value_;
  }

 private:
  mutable std::mutex lock_;
  bool value_ = false;
};

}  // namespace zephlin
