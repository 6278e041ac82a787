#pragma once

#include "Tests/Support/Daemon.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::test {

/// A display without a screen and a home for GNUstep's files, for as long as it lives. The
/// process's environment names both.
class PrivateDesktop {
 public:
  /// Throws std::runtime_error when the display does not start.
  PrivateDesktop();
  PrivateDesktop(const PrivateDesktop&) = delete;
  PrivateDesktop& operator=(const PrivateDesktop&) = delete;

 private:
  void settleIn();

  TemporaryDirectory home_;
  XServer display_;
};

}  // namespace zephlin::test
