#include "ZephlinCore/HidUtilOutputParser.h"

#include <charconv>
#include <cstddef>
#include <cstring>
#include <system_error>

namespace zephlin::HidUtilOutputParser {

namespace {

/// Takes the text up to the next line end off `text`.
std::string_view takeLine(std::string_view& text) {
  std::size_t end = text.find('\n');
  while (end != std::string_view::npos && end > 0 && text[end - 1] == '\r') {
    end = text.find('\n', end + 1);
  }
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

/// Takes the next column off `line`; empty when there is none. Only U+0020 separates columns.
std::string_view takeColumn(std::string_view& line) {
  const char* begin = line.data();
  const char* const lineEnd = begin + line.size();
  while (begin != lineEnd && *begin == ' ') {
    ++begin;
  }
  const void* const space = std::memchr(begin, ' ', static_cast<std::size_t>(lineEnd - begin));
  const char* const end = space == nullptr ? lineEnd : static_cast<const char*>(space);
  line = {end, static_cast<std::size_t>(lineEnd - end)};
  return {begin, static_cast<std::size_t>(end - begin)};
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
  // std::from_chars rejects a plus sign, and would accept the rest of "+-1".
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) {
      return std::nullopt;
    }
  }
  std::int64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end) {
    return std::nullopt;
  }
  return value;
}

bool isNullMarker(std::string_view text) {
  return text == "(null)" || text == "<null>";
}

}  // namespace

std::vector<HidPropertyRow> parse(std::string_view text) {
  std::vector<HidPropertyRow> rows;
  while (!text.empty()) {
    std::string_view line = takeLine(text);
    const std::string_view registryID = takeColumn(line);
    takeColumn(line);  // The property's name; the caller knows it.
    const std::string_view valueText = takeColumn(line);
    if (registryID == "RegistryID") {
      continue;
    }
    const std::optional<std::int64_t> value = parseInteger(valueText);
    if (value || isNullMarker(valueText)) {
      HidPropertyRow& row = rows.emplace_back();
      row.registryID = registryID;
      row.value = value;
    }
  }
  return rows;
}

}  // namespace zephlin::HidUtilOutputParser
