#pragma once

#include <optional>
#include <string>

#include "Platform/Services.h"

namespace zephlin {

/// NSUserDefaults' standard defaults, in the domain of the bundle identifier.
class MacUserDefaults final : public UserDefaults {
 public:
  [[nodiscard]] std::optional<bool> boolean(const std::string& key) const override;
  [[nodiscard]] bool boolForKey(const std::string& key) const override;
  void setBoolean(const std::string& key, bool value) override;
  void setDouble(const std::string& key, double value) override;
};

}  // namespace zephlin
