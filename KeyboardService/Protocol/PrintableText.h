#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zephlin {

/// `text` made fit for one line of a terminal or a log: control characters, line separators,
/// text-direction marks and bytes that are not UTF-8 become `\xNN`, and what exceeds about
/// `maximumBytes` of output is cut and marked with `…`.
std::string printable(std::string_view text, std::size_t maximumBytes = 1024);

/// `printable` text between double quotes, short: for naming what the user typed in a message.
std::string inQuotes(std::string_view text);

}  // namespace zephlin
