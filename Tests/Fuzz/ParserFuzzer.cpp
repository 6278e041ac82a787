// Whatever hidutil prints, the parser reads what a slow and obvious reader does.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "ZephlinCore/HidUtilOutputParser.h"
#include "ZephlinCore/Utf8.h"

namespace {

using Texts = std::vector<std::string>;

/// A line feed behind a carriage return does not end a line.
Texts linesOf(const std::string& text) {
  Texts lines(1);
  char previous = 0;
  for (const char character : text) {
    if (character == '\n' && previous != '\r') {
      lines.emplace_back();
    } else {
      lines.back() += character;
    }
    previous = character;
  }
  return lines;
}

Texts columnsOf(const std::string& line) {
  Texts columns;
  bool inside = false;
  for (const char character : line) {
    if (character == ' ') {
      inside = false;
      continue;
    }
    if (!inside) {
      columns.emplace_back();
    }
    columns.back() += character;
    inside = true;
  }
  return columns;
}

/// Digit by digit, towards the sign's own limit.
std::optional<std::int64_t> integerIn(const std::string& text) {
  const bool isSigned = text[0] == '+' || text[0] == '-';
  const std::string digits = isSigned ? text.substr(1) : text;
  std::int64_t value = 0;
  for (const char digit : digits) {
    if (digit < '0' || digit > '9' || __builtin_mul_overflow(value, 10, &value)) {
      return std::nullopt;
    }
    const std::int64_t step = text[0] == '-' ? '0' - digit : digit - '0';
    if (__builtin_add_overflow(value, step, &value)) {
      return std::nullopt;
    }
  }
  return digits.empty() ? std::nullopt : std::optional(value);
}

std::vector<zephlin::HidPropertyRow> rowsIn(const std::string& text) {
  std::vector<zephlin::HidPropertyRow> rows;
  for (const std::string& line : linesOf(text)) {
    const Texts columns = columnsOf(line);
    if (columns.size() < 3 || columns[0] == "RegistryID") {
      continue;
    }
    const bool isNull = columns[2] == "(null)" || columns[2] == "<null>";
    const std::optional<std::int64_t> value = integerIn(columns[2]);
    if (isNull || value) {
      rows.push_back({columns[0], value});
    }
  }
  return rows;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  static_cast<void>(zephlin::isValidUtf8(text));
  if (zephlin::HidUtilOutputParser::parse(text) != rowsIn(text)) {
    std::fputs("the parser and the slow reader differ\n", stderr);
    std::abort();
  }
  return 0;
}
