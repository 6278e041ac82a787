#include "KeyboardService/Protocol/Json.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <set>
#include <vector>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

using nlohmann::json;

RequestError wrongText(const JsonObjectShape& shape, const std::string& reason) {
  return RequestError(std::string(shape.name) + ' ' + reason + "; expected an object such as " +
                      std::string(shape.example));
}

/// Counts characters, not bytes, up to and with the byte at the one-based `position`.
std::size_t characterAt(std::string_view text, std::size_t position) {
  const std::string_view before = text.substr(0, position);
  const auto continues = [](char each) {
    return (static_cast<unsigned char>(each) & 0xC0U) == 0x80U;
  };
  const auto continuations = std::count_if(before.begin(), before.end(), continues);
  return position - static_cast<std::size_t>(continuations);
}

RequestError invalidText(const JsonObjectShape& shape, std::string_view text,
                         std::size_t position) {
  return wrongText(shape, "is not valid JSON (at character " +
                              std::to_string(characterAt(text, position)) + ")");
}

/// A parser callback that refuses an object with the same key twice: which of the two was meant
/// cannot be known.
class RepeatedKeyCheck {
 public:
  explicit RepeatedKeyCheck(const JsonObjectShape& shape) : shape_(shape) {}

  void see(json::parse_event_t event, const json& parsed) {
    if (event == json::parse_event_t::object_start) {
      keys_.emplace_back();
    } else if (event == json::parse_event_t::object_end) {
      keys_.pop_back();
    } else if (event == json::parse_event_t::key) {
      const auto& key = parsed.get_ref<const std::string&>();
      if (!keys_.back().insert(key).second) {
        throw wrongText(shape_, "names " + inQuotes(key) + " twice");
      }
    }
  }

 private:
  const JsonObjectShape& shape_;
  std::vector<std::set<std::string>> keys_;
};

json parse(std::string_view text, const JsonObjectShape& shape) {
  // The library takes a NUL for the end of the text.
  if (const auto nul = text.find('\0'); nul != std::string_view::npos) {
    throw invalidText(shape, text, nul + 1);
  }
  RepeatedKeyCheck check(shape);
  try {
    return json::parse(text, [&check](int, json::parse_event_t event, const json& parsed) {
      check.see(event, parsed);
      return true;
    });
  } catch (const json::parse_error& error) {
    throw invalidText(shape, text, error.byte);
  } catch (const json::out_of_range&) {
    throw wrongText(shape, "has a number that is out of range");
  }
}

}  // namespace

json parseJsonObject(std::string_view text, const JsonObjectShape& shape) {
  json value = parse(text, shape);
  if (!value.is_object()) {
    throw wrongText(shape, "is not an object");
  }
  return value;
}

std::optional<std::int64_t> wholeNumber(const json& value) {
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      return std::nullopt;
    }
    return static_cast<std::int64_t>(number);
  }
  if (value.is_number_integer()) {
    return value.get<std::int64_t>();
  }
  return std::nullopt;
}

std::string wholeNumberRule() {
  using Limits = std::numeric_limits<std::int64_t>;
  return "must be a whole number from " + std::to_string(Limits::min()) + " to " +
         std::to_string(Limits::max());
}

std::string jsonLine(const json& value) {
  return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace zephlin
