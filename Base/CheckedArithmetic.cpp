#include "Base/CheckedArithmetic.h"

#include <cstdio>
#include <cstdlib>
#include <limits>

namespace zephlin {

std::int64_t checkedSum(std::int64_t left, std::int64_t right) {
  using Limits = std::numeric_limits<std::int64_t>;
  const bool overflows = right > 0 ? left > Limits::max() - right : left < Limits::min() - right;
  if (overflows) {
    std::fputs("Zephlin: fatal: a count overflowed\n", stderr);
    std::abort();
  }
  return left + right;
}

}  // namespace zephlin
