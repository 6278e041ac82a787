#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "KeyboardService/Protocol/Keyboard.h"

namespace zephlin {

/// Chooses keyboards. What is absent is not asked for, so a default one matches every keyboard.
struct Matching {
  std::optional<std::int64_t> primaryUsagePage;
  std::optional<std::int64_t> primaryUsage;
  std::optional<std::int64_t> vendorID;
  std::optional<std::int64_t> productID;
  std::optional<std::string> product;
  std::optional<RegistryID> registryID;

  [[nodiscard]] bool matches(const Keyboard& keyboard) const;

  bool operator==(const Matching&) const = default;
};

/// Reads the argument of --matching. Throws RequestError.
Matching parseMatching(std::string_view text);

/// Throws RequestError if `value` is not an object, names an unknown key or has a value of the
/// wrong kind.
Matching matchingFromJson(const nlohmann::json& value);

nlohmann::json toJson(const Matching& matching);

}  // namespace zephlin
