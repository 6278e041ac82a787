#include "Platform/Linux/Session/LogEntry.h"

namespace zephlin {

namespace {

constexpr std::string_view indentedLine = "\n    ";
constexpr std::string_view ellipsis = "…";

bool isControl(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F;
}

bool isContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

std::string_view withoutLineFeedsAtEnd(std::string_view text) {
  const auto last = text.find_last_not_of("\r\n");
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

}  // namespace

std::string logEntry(std::string_view text, std::size_t maximumBytes) {
  std::string entry;
  for (const char character : withoutLineFeedsAtEnd(text)) {
    if (entry.size() > maximumBytes) {
      break;
    }
    if (character == '\n') {
      entry += indentedLine;
    } else {
      entry += isControl(character) && character != '\t' ? '?' : character;
    }
  }
  if (entry.size() > maximumBytes) {
    std::size_t end = maximumBytes - ellipsis.size();
    while (end > 0 && isContinuation(entry[end])) {
      --end;
    }
    entry.replace(end, std::string::npos, ellipsis);
  }
  return entry;
}

}  // namespace zephlin
