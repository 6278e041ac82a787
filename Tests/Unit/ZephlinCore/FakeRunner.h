#pragma once

#include <string>
#include <vector>

#include "ZephlinCore/ChildProcessRunner.h"

namespace zephlin::test {

/// Another body of ChildProcessRunner.h: answers what it is told, in order, and keeps the calls.
struct FakeRunner {
  struct Call {
    std::string executable;
    std::vector<std::string> arguments;
    double timeLimitSeconds;
  };

  /// What the calls return; one that finds none left is a failure of the test.
  std::vector<ChildProcessResult> results;
  std::vector<Call> calls;

  /// The one that the link seam asks.
  static FakeRunner& shared();
};

}  // namespace zephlin::test
