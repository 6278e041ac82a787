#include "Support/Throwing.h"

#include <exception>

#include "Platform/macOS/MacServices.h"

namespace zephlin::test {

std::string thrownBy(const std::function<void()>& work) {
  try {
    work();
  } catch (const std::exception& error) {
    return error.what();
  }
  return {};
}

std::string nativeErrorOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const NativeError& error) {
    return error.domain + " " + std::to_string(error.code);
  }
  return {};
}

}  // namespace zephlin::test
