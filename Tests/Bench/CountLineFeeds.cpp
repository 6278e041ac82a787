#include "Tests/Bench/CountLineFeeds.h"

#include <algorithm>

namespace zephlin::bench {

std::size_t countLineFeeds(std::string_view text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace zephlin::bench
