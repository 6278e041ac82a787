#include "Platform/Linux/Session/DesktopEntry.h"

#include <algorithm>
#include <sstream>

namespace zephlin {

namespace {

constexpr std::string_view groupHeader = "[Desktop Entry]";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::string_view keyOf(std::string_view line) {
  const auto equals = line.find('=');
  const bool isEntry = equals != std::string_view::npos && !line.starts_with('#');
  return isEntry ? trimmed(line.substr(0, equals)) : std::string_view();
}

}  // namespace

DesktopEntry::DesktopEntry(std::string_view text) {
  std::istringstream stream{std::string(text)};
  for (std::string line; std::getline(stream, line);) {
    lines_.push_back(line);
  }
}

std::optional<std::string> DesktopEntry::value(std::string_view key) const {
  const auto line = lineOf(key);
  if (!line) {
    return std::nullopt;
  }
  const std::string_view text = lines_[*line];
  return std::string(trimmed(text.substr(text.find('=') + 1)));
}

std::vector<std::string> DesktopEntry::list(std::string_view key) const {
  std::istringstream text(value(key).value_or(""));
  std::vector<std::string> parts;
  for (std::string part; std::getline(text, part, ';');) {
    parts.push_back(part);
  }
  return parts;
}

void DesktopEntry::setValue(std::string_view key, std::string_view value) {
  const std::string text = std::string(key) + "=" + std::string(value);
  if (const auto line = lineOf(key)) {
    lines_[*line] = text;
    return;
  }
  if (!group()) {
    lines_.emplace_back(groupHeader);
  }
  auto end = group()->end;
  // Empty lines stay between this group and the next one.
  while (trimmed(lines_[end - 1]).empty()) {
    --end;
  }
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(end), text);
}

void DesktopEntry::remove(std::string_view key) {
  if (const auto line = lineOf(key)) {
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(*line));
  }
}

std::string DesktopEntry::text() const {
  std::string text;
  for (const std::string& line : lines_) {
    text += line + "\n";
  }
  return text;
}

std::optional<DesktopEntry::Range> DesktopEntry::group() const {
  const auto isHeader = [](const std::string& line) { return trimmed(line) == groupHeader; };
  const auto isAnyHeader = [](const std::string& line) { return trimmed(line).starts_with('['); };
  const auto header = std::find_if(lines_.begin(), lines_.end(), isHeader);
  if (header == lines_.end()) {
    return std::nullopt;
  }
  const auto next = std::find_if(header + 1, lines_.end(), isAnyHeader);
  return Range{static_cast<std::size_t>(header - lines_.begin()) + 1,
               static_cast<std::size_t>(next - lines_.begin())};
}

std::optional<std::size_t> DesktopEntry::lineOf(std::string_view key) const {
  const Range range = group().value_or(Range{});
  for (std::size_t line = range.begin; line < range.end; ++line) {
    if (keyOf(lines_[line]) == key) {
      return line;
    }
  }
  return std::nullopt;
}

std::string execValue(std::string_view programPath) {
  // Two rules apply, one after the other: that of quoted arguments, and that of all text values, in
  // which each backslash is doubled.
  std::string quoted = "\"";
  for (const char character : programPath) {
    switch (character) {
      case '\\':
        quoted += R"(\\\\)";
        break;
      case '"':
      case '`':
      case '$':
        quoted += R"(\\)";
        quoted += character;
        break;
      case '%':
        quoted += "%%";
        break;
      case '\n':
        quoted += R"(\n)";
        break;
      default:
        quoted += character;
    }
  }
  return quoted + '"';
}

}  // namespace zephlin
