#pragma once

#include <map>
#include <optional>
#include <string>

#include "Platform/Application.h"

namespace zephlin {

class SimulatedProcessInfo final : public ProcessInfo {
 public:
  [[nodiscard]] std::optional<std::string> environmentVariable(
      const std::string& name) const override;
  [[nodiscard]] std::string mainBundlePath() const override { return bundlePath; }

  std::map<std::string, std::string> environment;
  std::string bundlePath = "/Applications/Zephlin.app";
};

}  // namespace zephlin
