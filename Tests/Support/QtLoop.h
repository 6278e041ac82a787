#pragma once

#include <chrono>
#include <functional>

namespace zephlin::test {

/// Runs Qt's event loop until the condition holds. False if it does not within a minute.
bool eventually(const std::function<bool()>& condition);

/// Runs Qt's event loop for this long.
void runLoopFor(std::chrono::milliseconds duration);

}  // namespace zephlin::test
