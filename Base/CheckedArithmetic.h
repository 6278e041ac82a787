#pragma once

#include <cstdint>

namespace zephlin {

/// The sum of two counts. An overflow is a fault of the program: it prints one line on standard
/// error and aborts the process; it never wraps. Any thread.
std::int64_t checkedSum(std::int64_t left, std::int64_t right);

}  // namespace zephlin
