#include "Tests/Unit/ZephlinCore/FakeRunner.h"

#include <stdexcept>

namespace zephlin {

namespace test {

FakeRunner& FakeRunner::shared() {
  static FakeRunner runner;
  return runner;
}

}  // namespace test

ChildProcessResult runChildProcess(const std::string& executable,
                                   std::span<const std::string> arguments,
                                   std::chrono::duration<double> timeLimit) {
  test::FakeRunner& runner = test::FakeRunner::shared();
  runner.calls.push_back({executable, {arguments.begin(), arguments.end()}, timeLimit.count()});
  if (runner.results.empty()) {
    throw std::logic_error("hidutil was run once more than expected");
  }
  const ChildProcessResult result = runner.results.front();
  runner.results.erase(runner.results.begin());
  return result;
}

}  // namespace zephlin
