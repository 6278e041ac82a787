#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace zephlin::test {

/// Sets an environment variable, or unsets it, and restores it at the end.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* const former = std::getenv(name)) {
      former_ = former;
    }
    set(value);
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { set(former_); }

 private:
  void set(const std::optional<std::string>& value) const {
    if (value) {
      ::setenv(name_, value->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }

  const char* name_;
  std::optional<std::string> former_;
};

}  // namespace zephlin::test
