#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zephlin {

/// Splits a stream of bytes into lines at line feeds. What it yields depends on the bytes alone,
/// not on the pieces in which they come. The first line beyond the limit ends the stream: nothing
/// can be taken after it.
class LineSplitter {
 public:
  enum class State {
    NeedsBytes,  ///< There is no whole line yet.
    HasLine,     ///< `takeLine` yields one.
    LineTooLong,
  };

  /// `maximumLineBytes` does not count the line feed.
  explicit LineSplitter(std::size_t maximumLineBytes) : maximumLineBytes_(maximumLineBytes) {}

  void append(std::string_view bytes) { buffer_ += bytes; }

  [[nodiscard]] State state() const;

  /// Whether a line has begun that has not ended.
  [[nodiscard]] bool hasPartialLine() const {
    return state() == State::NeedsBytes && !buffer_.empty();
  }

  /// The next line without its line feed. Only in state HasLine.
  std::string takeLine();

 private:
  std::size_t maximumLineBytes_;
  std::string buffer_;
};

}  // namespace zephlin
