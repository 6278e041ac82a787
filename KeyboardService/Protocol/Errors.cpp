#include "KeyboardService/Protocol/Errors.h"

#include <array>
#include <cstdint>
#include <system_error>

namespace zephlin {
namespace {

constexpr std::size_t bytesInQuotes = 160;

struct Character {
  char32_t code = 0;
  std::size_t bytes = 1;
  bool valid = false;
};

std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) {
    return 1;
  }
  if (lead >= 0xC2 && lead <= 0xDF) {
    return 2;
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    return 3;
  }
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

bool isScalarOfLength(char32_t code, std::size_t length) {
  constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return code >= smallest.at(length) && code <= 0x10FFFF && !surrogate;
}

/// The UTF-8 character at the start of a text that is not empty; one invalid byte if there is none.
Character firstCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = sequenceLength(lead);
  if (length == 0 || length > text.size()) {
    return {};
  }
  char32_t code = length == 1 ? lead : lead & (0x7FU >> length);
  for (const char next : text.substr(1, length - 1)) {
    const auto byte = static_cast<unsigned char>(next);
    if ((byte & 0xC0U) != 0x80U) {
      return {};
    }
    code = (code << 6U) | (byte & 0x3FU);
  }
  return isScalarOfLength(code, length) ? Character{code, length, true} : Character{};
}

bool disturbsALine(char32_t code) {
  const bool control = code < 0x20 || (code >= 0x7F && code < 0xA0);
  const bool separator = code == 0x2028 || code == 0x2029;
  const bool direction = code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
                         (code >= 0x2066 && code <= 0x2069);
  return control || separator || direction;
}

void appendEscaped(std::string& result, std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  for (const char each : bytes) {
    const auto byte = static_cast<unsigned char>(each);
    result += "\\x";
    result += digits.at(byte >> 4U);
    result += digits.at(byte & 0x0FU);
  }
}

}  // namespace

std::string errnoText(int errorNumber) {
  return " (" + std::generic_category().message(errorNumber) + ")";
}

std::string printable(std::string_view text, std::size_t maximumBytes) {
  std::string result;
  while (!text.empty()) {
    if (result.size() >= maximumBytes) {
      return result + "…";
    }
    const Character next = firstCharacter(text);
    const std::string_view bytes = text.substr(0, next.bytes);
    if (next.valid && !disturbsALine(next.code)) {
      result += bytes;
    } else {
      appendEscaped(result, bytes);
    }
    text.remove_prefix(next.bytes);
  }
  return result;
}

std::string inQuotes(std::string_view text) {
  return '"' + printable(text, bytesInQuotes) + '"';
}

}  // namespace zephlin
