#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zephlin {

/// Names one keyboard for as long as the service runs; never used again for another one.
enum class RegistryID : std::uint64_t {};

/// The form that listings print: lower-case hexadecimal without a prefix.
std::string toText(RegistryID registryID);

/// Reads exactly the form that listings print, and nothing else.
std::optional<RegistryID> registryIDFromText(std::string_view text);

/// The same for text that the user typed. Throws RequestError.
RegistryID parseRegistryID(std::string_view text);

/// What a bus knows about a keyboard. The texts come from the device: any bytes.
struct KeyboardDescription {
  std::int64_t primaryUsagePage = 1;  ///< HID usage page; 1 is Generic Desktop.
  std::int64_t primaryUsage = 6;      ///< HID usage on that page; 6 is Keyboard.
  std::int64_t vendorID = 0;
  std::int64_t productID = 0;
  std::string product;
  std::string transport;  ///< The bus by name, such as "USB" or "Virtual".
  std::string seat;       ///< As logind names it, or empty for a keyboard of no seat.

  bool operator==(const KeyboardDescription&) const = default;
};

struct Keyboard {
  RegistryID registryID{};
  KeyboardDescription description;
  std::string state;  ///< For people: whether and how `CapsLockDelayOverride` is in force.

  bool operator==(const Keyboard&) const = default;
};

/// Chooses keyboards. An absent member matches anything, so a default one matches every keyboard.
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
