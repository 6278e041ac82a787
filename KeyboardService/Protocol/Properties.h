#pragma once

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zephlin {

/// Properties of one keyboard, or to be set on several. The bus decides what a value does.
using PropertySet = std::map<std::string, std::int64_t, std::less<>>;

/// The delay of Caps Lock, in milliseconds.
constexpr std::string_view capsLockDelayKey = "CapsLockDelayOverride";

/// Not counting `capsLockDelayKey`.
constexpr std::size_t maximumPropertiesOfAKeyboard = 64;
constexpr std::size_t maximumPropertyKeyBytes = 128;

/// Throws RequestError unless `key` is 1 to 128 printable ASCII characters without spaces.
void requirePropertyKey(std::string_view key);

/// Reads the argument of --set. Throws RequestError.
PropertySet parseProperties(std::string_view text);

/// Throws RequestError unless `value` is an object of 1 to 64 valid keys with whole numbers.
PropertySet propertiesFromJson(const nlohmann::json& value);

/// What `CapsLockDelayOverride` asks for: how long Caps Lock must be held before its press counts.
/// Zero makes it instant. Returns nothing where the system's own behaviour is wanted: unset,
/// negative, or 75, the default on macOS.
std::optional<std::chrono::milliseconds> capsLockDelay(const PropertySet& properties);

/// The longest delay that a real keyboard carries.
constexpr std::chrono::milliseconds maximumCapsLockDelay{60'000};

/// Throws RequestError above that maximum.
void requireCapsLockDelayInRange(const PropertySet& properties);

}  // namespace zephlin
