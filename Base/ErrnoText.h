#pragma once

#include <string>
#include <system_error>

namespace zephlin {

/// The system's text for an errno value, to follow a message: " (No such file or directory)".
inline std::string errnoText(int errorNumber) {
  return " (" + std::generic_category().message(errorNumber) + ")";
}

}  // namespace zephlin
