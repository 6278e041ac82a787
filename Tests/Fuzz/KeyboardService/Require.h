#pragma once

#include <cstdio>
#include <cstdlib>

namespace zephlin {

/// Ends the fuzzer with a finding unless what has to hold does.
inline void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
  }
}

}  // namespace zephlin
