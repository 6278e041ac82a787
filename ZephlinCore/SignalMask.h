#pragma once

#include <csignal>

namespace zephlin {

/// Blocks every signal for the calling thread while it lives, then restores the thread's mask.
/// What is created meanwhile, a thread or a child, starts with every signal blocked.
class AllSignalsBlocked {
 public:
  AllSignalsBlocked() noexcept;
  AllSignalsBlocked(const AllSignalsBlocked&) = delete;
  AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;
  ~AllSignalsBlocked();

 private:
  sigset_t previous_;
};

}  // namespace zephlin
