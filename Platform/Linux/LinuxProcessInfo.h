#pragma once

#include <optional>
#include <string>

#include "Platform/Application.h"

namespace zephlin {

class LinuxProcessInfo final : public ProcessInfo {
 public:
  [[nodiscard]] std::optional<std::string> environmentVariable(
      const std::string& name) const override;
  /// The folder of the running executable, whatever link it was started by. Empty where /proc is
  /// not mounted.
  [[nodiscard]] std::string mainBundlePath() const override;
};

}  // namespace zephlin
