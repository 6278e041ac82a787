#pragma once

#include <stdexcept>

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

}  // namespace zephlin
