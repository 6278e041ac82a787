#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace zephlin {

/// The sum of two counts. An overflow is a bug in the program: it prints one line on standard error
/// and aborts, and never wraps. Any thread.
inline std::int64_t checkedSum(std::int64_t left, std::int64_t right) {
  using Limits = std::numeric_limits<std::int64_t>;
  const bool overflows = right > 0 ? left > Limits::max() - right : left < Limits::min() - right;
  if (overflows) {
    std::fputs("Zephlin: fatal: a count overflowed\n", stderr);
    std::abort();
  }
  return left + right;
}

}  // namespace zephlin
