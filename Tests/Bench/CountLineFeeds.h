#pragma once

#include <cstddef>
#include <string_view>

namespace zephlin::bench {

/// A plain pass over the bytes, compiled with -O2: the cost of reading each of them once.
std::size_t countLineFeeds(std::string_view text);

}  // namespace zephlin::bench
