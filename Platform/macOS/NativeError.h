#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace zephlin {

/// An NSError as it is: what() is its localized description.
class NativeError final : public std::runtime_error {
 public:
  NativeError(const std::string& localizedDescription, std::string errorDomain, long errorCode)
      : std::runtime_error(localizedDescription), domain(std::move(errorDomain)), code(errorCode) {}

  std::string domain;
  long code;
};

}  // namespace zephlin
