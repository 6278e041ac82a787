#pragma once

#include <exception>
#include <iostream>

namespace zephlin {

/// What a program's `main` returns: says why `program` has failed, if it has.
inline int runProgram(void (*program)()) {
  try {
    program();
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
  return 0;
}

}  // namespace zephlin
