#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zephlin {

/// How a JSON text is called and shown in the message about what is wrong with it.
struct JsonObjectShape {
  std::string_view name;     ///< For example "--matching".
  std::string_view example;  ///< A complete object.
};

/// Reads a JSON text that must be one object. Throws RequestError if it is no JSON, is not UTF-8,
/// is another kind of value, or has an object with the same key twice.
nlohmann::json parseJsonObject(std::string_view text, const JsonObjectShape& shape);

/// The number if `value` is one without fraction or exponent that fits 64 bits with a sign.
std::optional<std::int64_t> wholeNumber(const nlohmann::json& value);

/// "must be a whole number from … to …", the end of every message about such a value.
std::string wholeNumberRule();

/// `value` as one line of JSON without a line feed. Text in it that is not UTF-8 is replaced.
std::string jsonLine(const nlohmann::json& value);

}  // namespace zephlin
