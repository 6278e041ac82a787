#pragma once

#include <string>
#include <vector>

namespace zephlin::test {

/// A body of ZephlinCore/ChildProcessRunner.h: one keyboard that hidutil sets and reads. Any
/// thread.
class FakeHidutil {
 public:
  static FakeHidutil& shared();

  /// Resets the keyboard and forgets what was recorded.
  void reset();
  /// Each run exits with this status from now on; 0 for success.
  void setExitStatus(int status);

  /// The values that were set, in order.
  [[nodiscard]] std::vector<std::string> sets() const;
  /// Whether no run was on the main thread.
  [[nodiscard]] bool neverOnMainThread() const;

 private:
  FakeHidutil() = default;
};

}  // namespace zephlin::test
