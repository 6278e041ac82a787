// Histories of a keyboard: the rewriter of Caps Lock keeps what it promises, whatever is typed.

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "Tests/Fuzz/KeyboardService/Require.h"
#include "Tests/Unit/KeyboardService/Service/Evdev/RewriterHistory.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    zephlin::checkHistory({data, data + size});
  } catch (const std::logic_error& error) {
    zephlin::require(false, error.what());
  }
  return 0;
}
