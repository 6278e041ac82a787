#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zephlin {

/// The group "Desktop Entry" of a desktop entry file (freedesktop.org). Everything else in the
/// file, including comments, stays as it is.
class DesktopEntry {
 public:
  /// Reads leniently: a line that is not in the format is kept and ignored.
  explicit DesktopEntry(std::string_view text);

  /// The value as it is in the file, with its escapes; the first one of a repeated key.
  [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
  /// The key's value is "true".
  [[nodiscard]] bool isTrue(std::string_view key) const { return value(key) == "true"; }
  /// The parts of a list, which semicolons end.
  [[nodiscard]] std::vector<std::string> list(std::string_view key) const;
  /// Replaces the key's value, or adds the key at the group's end, and the group if it is missing.
  void setValue(std::string_view key, std::string_view value);
  void remove(std::string_view key);

  [[nodiscard]] std::string text() const;

 private:
  /// The group's first line after its header, and the one after its last.
  struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
  };
  [[nodiscard]] std::optional<Range> group() const;
  [[nodiscard]] std::optional<std::size_t> lineOf(std::string_view key) const;

  std::vector<std::string> lines_;
};

/// A program's path as the value of the key Exec, quoted and escaped.
std::string execValue(std::string_view programPath);

}  // namespace zephlin
