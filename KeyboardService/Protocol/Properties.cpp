#include "KeyboardService/Protocol/Properties.h"

#include <nlohmann/json.hpp>

#include <algorithm>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Json.h"

namespace zephlin {
namespace {

using nlohmann::json;

constexpr JsonObjectShape setArgument{"--set", R"({"CapsLockDelayOverride":0})"};

/// The system's own delay where the property comes from.
constexpr std::int64_t systemDelay = 75;

bool isPrintableWithoutSpace(char each) {
  return each > ' ' && each < '\x7f';
}

void requireSensibleCount(std::size_t count) {
  if (count == 0) {
    throw RequestError("no property to set; expected an object such as " +
                       std::string(setArgument.example));
  }
  if (count > maximumPropertiesOfAKeyboard) {
    throw RequestError("too many properties (" + std::to_string(count) +
                       "); a keyboard holds at most " +
                       std::to_string(maximumPropertiesOfAKeyboard));
  }
}

std::int64_t valueFromJson(std::string_view key, const json& value) {
  const auto number = wholeNumber(value);
  if (!number) {
    throw RequestError("the value of " + inQuotes(key) + ' ' + wholeNumberRule());
  }
  return *number;
}

}  // namespace

void requirePropertyKey(std::string_view key) {
  if (key.empty() || key.size() > maximumPropertyKeyBytes ||
      !std::all_of(key.begin(), key.end(), isPrintableWithoutSpace)) {
    throw RequestError("property key " + inQuotes(key) +
                       " is not valid; a key is 1 to 128 printable ASCII characters, no spaces");
  }
}

PropertySet parseProperties(std::string_view text) {
  return propertiesFromJson(parseJsonObject(text, setArgument));
}

PropertySet propertiesFromJson(const json& value) {
  if (!value.is_object()) {
    throw RequestError("the properties must be an object such as " +
                       std::string(setArgument.example));
  }
  requireSensibleCount(value.size());
  PropertySet properties;
  for (const auto& [key, number] : value.items()) {
    requirePropertyKey(key);
    properties.emplace(key, valueFromJson(key, number));
  }
  return properties;
}

std::optional<std::chrono::milliseconds> capsLockDelay(const PropertySet& properties) {
  const auto property = properties.find(capsLockDelayKey);
  if (property == properties.end() || property->second < 0 || property->second == systemDelay) {
    return std::nullopt;
  }
  return std::chrono::milliseconds(property->second);
}

void requireCapsLockDelayInRange(const PropertySet& properties) {
  if (capsLockDelay(properties) > maximumCapsLockDelay) {
    throw RequestError("CapsLockDelayOverride can be at most " +
                       std::to_string(maximumCapsLockDelay.count()) + " on this keyboard");
  }
}

}  // namespace zephlin
