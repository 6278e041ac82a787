#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zephlin {

/// A command line that does not say what to do: the program ends with exit status 64.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A request that cannot be done, or a service that cannot do it. The text is one line for the
/// user that says what is wrong and what to do; what the user typed is in it in printable form.
class RequestError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// `text` made fit for one line of a terminal or a log: control characters, line separators,
/// text-direction marks and bytes that are not UTF-8 become `\xNN`, and what exceeds about
/// `maximumBytes` of output is cut and marked with `…`.
std::string printable(std::string_view text, std::size_t maximumBytes = 1024);

/// `printable` text between double quotes, short: for naming what the user typed in a message.
std::string inQuotes(std::string_view text);

}  // namespace zephlin
