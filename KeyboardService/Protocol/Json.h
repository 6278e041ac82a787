#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zephlin {

/// What a message about a JSON text calls it, and what it should have looked like.
struct JsonObjectShape {
  std::string_view name;     ///< For example "--matching".
  std::string_view example;  ///< A complete object.
};

/// Reads a JSON text that must be one object. Throws RequestError if it is not valid JSON in
/// UTF-8, is another kind of value, or has an object with the same key twice.
nlohmann::json parseJsonObject(std::string_view text, const JsonObjectShape& shape);

/// The number, if `value` is one without fraction or exponent that fits a signed 64-bit integer.
std::optional<std::int64_t> wholeNumber(const nlohmann::json& value);

/// "must be a whole number from … to …", the end of every message about such a value.
std::string wholeNumberRule();

/// `value` as one line of JSON without a line feed. Text in it that is not UTF-8 is replaced.
std::string jsonLine(const nlohmann::json& value);

}  // namespace zephlin
