#include "Platform/Simulated/SimulatedProcessInfo.h"

namespace zephlin {

std::optional<std::string> SimulatedProcessInfo::environmentVariable(
    const std::string& name) const {
  const auto found = environment.find(name);
  return found == environment.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace zephlin
