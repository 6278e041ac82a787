#pragma once

#include <optional>
#include <string>

#include "Platform/Application.h"

namespace zephlin {

class MacProcessInfo final : public ProcessInfo {
 public:
  [[nodiscard]] std::optional<std::string> environmentVariable(
      const std::string& name) const override;
  [[nodiscard]] std::string mainBundlePath() const override;
};

}  // namespace zephlin
