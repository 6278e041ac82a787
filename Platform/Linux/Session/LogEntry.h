#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zephlin {

/// The text as an entry of a log, at most `maximumBytes` long and without a line feed at its end:
/// lines behind the first are indented, other control characters are '?', and what is cut off is
/// shown by "…".
std::string logEntry(std::string_view text, std::size_t maximumBytes);

}  // namespace zephlin
