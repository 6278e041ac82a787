#include "KeyboardService/Protocol/Keyboard.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Json.h"

namespace zephlin {
namespace {

using nlohmann::json;

constexpr JsonObjectShape matchingArgument{"--matching",
                                           R"({"PrimaryUsagePage":1,"PrimaryUsage":6})"};

struct NumberKey {
  std::string_view name;
  std::optional<std::int64_t> Matching::*wanted;
  std::int64_t KeyboardDescription::*actual;
};

constexpr std::array numberKeys{
    NumberKey{"PrimaryUsagePage", &Matching::primaryUsagePage,
              &KeyboardDescription::primaryUsagePage},
    NumberKey{"PrimaryUsage", &Matching::primaryUsage, &KeyboardDescription::primaryUsage},
    NumberKey{"VendorID", &Matching::vendorID, &KeyboardDescription::vendorID},
    NumberKey{"ProductID", &Matching::productID, &KeyboardDescription::productID},
};
constexpr std::string_view productKey = "Product";
constexpr std::string_view registryIDKey = "RegistryID";

RequestError unknownKey(std::string_view key) {
  std::string known;
  for (const NumberKey& each : numberKeys) {
    known += std::string(each.name) + ", ";
  }
  return RequestError("unknown matching key " + inQuotes(key) + "; known keys are " + known +
                      std::string(productKey) + ", " + std::string(registryIDKey));
}

std::int64_t numberFromJson(std::string_view key, const json& value) {
  const auto number = wholeNumber(value);
  if (!number) {
    throw RequestError("matching key " + inQuotes(key) + ' ' + wholeNumberRule());
  }
  return *number;
}

std::string productFromJson(const json& value) {
  if (!value.is_string()) {
    throw RequestError(R"(matching key "Product" must be text, such as "Virtual Keyboard 1")");
  }
  return value.get<std::string>();
}

RegistryID registryIDFromJson(const json& value) {
  const auto registryID =
      value.is_string() ? registryIDFromText(value.get_ref<const std::string&>()) : std::nullopt;
  if (!registryID) {
    throw RequestError(
        R"(matching key "RegistryID" must be text as hidutil list prints it, such as "100000001")");
  }
  return *registryID;
}

void readKey(Matching& matching, std::string_view key, const json& value) {
  if (key == productKey) {
    matching.product = productFromJson(value);
    return;
  }
  if (key == registryIDKey) {
    matching.registryID = registryIDFromJson(value);
    return;
  }
  const auto* const number =
      std::find_if(numberKeys.begin(), numberKeys.end(),
                   [key](const NumberKey& each) { return each.name == key; });
  if (number == numberKeys.end()) {
    throw unknownKey(key);
  }
  matching.*number->wanted = numberFromJson(key, value);
}

}  // namespace

std::string toText(RegistryID registryID) {
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                 static_cast<std::uint64_t>(registryID), 16);
  return {digits.data(), end.ptr};
}

std::optional<RegistryID> registryIDFromText(std::string_view text) {
  std::uint64_t number = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  const auto registryID = static_cast<RegistryID>(number);
  // Printing it again rules out capitals, leading zeros, signs and trailing characters.
  if (end.ec != std::errc{} || toText(registryID) != text) {
    return std::nullopt;
  }
  return registryID;
}

RegistryID parseRegistryID(std::string_view text) {
  const auto registryID = registryIDFromText(text);
  if (!registryID) {
    throw RequestError(inQuotes(text) + " is not a RegistryID; hidutil list prints them");
  }
  return *registryID;
}

bool Matching::matches(const Keyboard& keyboard) const {
  const bool numbersMatch =
      std::all_of(numberKeys.begin(), numberKeys.end(), [&](const NumberKey& each) {
        const auto& wanted = this->*each.wanted;
        return !wanted || *wanted == keyboard.description.*each.actual;
      });
  return numbersMatch && (!product || *product == keyboard.description.product) &&
         (!registryID || *registryID == keyboard.registryID);
}

Matching parseMatching(std::string_view text) {
  return matchingFromJson(parseJsonObject(text, matchingArgument));
}

Matching matchingFromJson(const json& value) {
  if (!value.is_object()) {
    throw RequestError("the matching must be an object such as " +
                       std::string(matchingArgument.example));
  }
  Matching matching;
  for (const auto& [key, wanted] : value.items()) {
    readKey(matching, key, wanted);
  }
  return matching;
}

json toJson(const Matching& matching) {
  json value = json::object();
  for (const NumberKey& each : numberKeys) {
    if (const auto& wanted = matching.*each.wanted) {
      value[std::string(each.name)] = *wanted;
    }
  }
  if (matching.product) {
    value[std::string(productKey)] = *matching.product;
  }
  if (matching.registryID) {
    value[std::string(registryIDKey)] = toText(*matching.registryID);
  }
  return value;
}

}  // namespace zephlin
