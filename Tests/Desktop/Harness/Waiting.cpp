#include "Tests/Desktop/Harness/Waiting.h"

#include <QCoreApplication>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

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
  constexpr double timeoutSeconds = 60;
  constexpr std::chrono::milliseconds pause(5);
  const double deadline = monotonicSeconds() + timeoutSeconds;
  while (!condition()) {
    if (monotonicSeconds() > deadline) {
      if (actionBeforeFailure()) {
        actionBeforeFailure()();
      }
      throw std::runtime_error("waited in vain for " + what());
    }
    std::this_thread::sleep_for(pause);
    QCoreApplication::processEvents();
  }
}

void beforeWaitingFails(std::function<void()> action) {
  actionBeforeFailure() = std::move(action);
}

double monotonicSeconds() {
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(sinceStart).count();
}

}  // namespace zephlin::test
