#pragma once

#include <string>
#include <vector>

namespace zephlin::test {

/// A body of ZephlinCore/ChildProcessRunner.h: one keyboard that does as hidutil tells it. Any
/// thread.
class FakeHidutil {
 public:
  static FakeHidutil& shared();

  /// As after a start of the machine, and nothing recorded.
  void reset();
  /// Each run exits with this status from now on; 0 for success.
  void setExitStatus(int status);

  /// The values that were set, in order.
  [[nodiscard]] std::vector<std::string> sets() const;
  /// Whether every run was on another thread than the main one.
  [[nodiscard]] bool neverOnMainThread() const;

 private:
  FakeHidutil() = default;
};

}  // namespace zephlin::test
