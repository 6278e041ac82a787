#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zephlin {

/// A desktop entry file (freedesktop.org), by its group "Desktop Entry". All else in the file,
/// comments too, stays as it is.
class DesktopEntry {
 public:
  /// Reads leniently: a line that is none of the format's is kept and means nothing.
  explicit DesktopEntry(std::string_view text);

  /// The value as it stands in the file, escapes and all; of a repeated key, the first.
  [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
  /// The key's value is "true".
  [[nodiscard]] bool isTrue(std::string_view key) const { return value(key) == "true"; }
  /// The parts of a list, which semicolons end.
  [[nodiscard]] std::vector<std::string> list(std::string_view key) const;
  /// Replaces the key's value, or adds the key at the group's end. Adds the group if need be.
  void setValue(std::string_view key, std::string_view value);
  void remove(std::string_view key);

  [[nodiscard]] std::string text() const;

 private:
  /// Of the group: the line behind its header, and behind its last.
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
