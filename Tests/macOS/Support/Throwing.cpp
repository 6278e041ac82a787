#include "Support/Throwing.h"

#include <exception>

namespace zephlin::test {

std::string thrownBy(const std::function<void()>& work) {
  try {
    work();
  } catch (const std::exception& error) {
    return error.what();
  }
  return {};
}

}  // namespace zephlin::test
