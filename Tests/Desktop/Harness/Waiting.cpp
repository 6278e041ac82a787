#include "Tests/Desktop/Harness/Waiting.h"

#include <chrono>
#include <stdexcept>
#include <utility>

#include "Tests/Support/QtLoop.h"

namespace zephlin::test {
namespace {

std::function<void()>& actionBeforeFailure() {
  static std::function<void()> action;
  return action;
}

}  // namespace

void waitUntil(const std::string& what, const std::function<bool()>& condition) {
  waitUntil([&] { return what; }, condition);
}

void waitUntil(const std::function<std::string()>& what, const std::function<bool()>& condition) {
  if (eventually(condition)) {
    return;
  }
  if (actionBeforeFailure()) {
    actionBeforeFailure()();
  }
  throw std::runtime_error("waited in vain for " + what());
}

void beforeWaitingFails(std::function<void()> action) {
  actionBeforeFailure() = std::move(action);
}

double monotonicSeconds() {
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(sinceStart).count();
}

}  // namespace zephlin::test
