#pragma once

#include <functional>
#include <string>

namespace zephlin::test {

/// Waits until the condition holds and runs Qt's event loop meanwhile. Throws std::runtime_error
/// with `what` after a minute.
void waitUntil(const std::string& what, const std::function<bool()>& condition);

/// The same with a text that is made only for a failure.
void waitUntil(const std::function<std::string()>& what, const std::function<bool()>& condition);

/// Called before a wait fails, while everything is still there.
void beforeWaitingFails(std::function<void()> action);

/// Seconds of CLOCK_MONOTONIC.
double monotonicSeconds();

}  // namespace zephlin::test
