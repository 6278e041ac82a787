#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KeyboardService/Check/CheckedKeyboard.h"

namespace zephlin {

/// Everything that a bug report needs.
struct CheckReport {
  std::string text;
  bool canAllBeInstant = false;  ///< And there is at least one keyboard.
};

/// Looks at the machine and its keyboards, and changes nothing. It asks the service that listens at
/// a socket, and runs as well without one and as any user. Throws std::system_error if udev cannot
/// be asked.
CheckReport checkKeyboards(const std::string& socketPath);

enum class ServiceAnswers { Yes, No };

/// The last lines of the report. `containerAdvice` is empty outside a container.
std::string verdict(const std::vector<CheckedKeyboard>& keyboards, ServiceAnswers serviceAnswers,
                    const std::optional<std::string>& containerAdvice);

}  // namespace zephlin
