#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zephlin {

/// A command line that cannot be understood. The program exits with status 64.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A request that cannot be carried out. The text is one line for the user: what is wrong and what
/// to do about it, with all input in printable form. A bus leaves out which keyboard it was.
class RequestError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The system's text for an errno value, to follow a message: " (No such file or directory)".
std::string errnoText(int errorNumber);

/// `text` made fit for one line of a terminal or a log: control characters, line separators,
/// text-direction marks and bytes that are not UTF-8 become `\xNN`, and what exceeds about
/// `maximumBytes` of output is cut and marked with `…`.
std::string printable(std::string_view text, std::size_t maximumBytes = 1024);

/// Short `printable` text in double quotes, for naming what the user typed in a message.
std::string inQuotes(std::string_view text);

}  // namespace zephlin
