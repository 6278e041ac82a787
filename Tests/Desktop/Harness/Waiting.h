#pragma once

#include <functional>
#include <string>

namespace zephlin::test {

/// Waits until the condition holds, working off this thread's Qt events meanwhile. Throws
/// std::runtime_error with `what` after a minute.
void waitUntil(const std::string& what, const std::function<bool()>& condition);

/// The same, with a text that is asked for in the end.
void waitUntil(const std::function<std::string()>& what, const std::function<bool()>& condition);

/// Called before a wait ends in vain, while all is still there that was waited for.
void beforeWaitingFails(std::function<void()> action);

/// Seconds of CLOCK_MONOTONIC.
double monotonicSeconds();

}  // namespace zephlin::test
