#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zephlin {

/// Where the service listens unless it is told otherwise.
constexpr std::string_view defaultSocketPath = "/run/zephlin/hidd.sock";

/// The longest lines, without line feed: a request, a response, and what a subscription is sent.
constexpr std::size_t maximumRequestBytes = std::size_t{64} * 1024;
constexpr std::size_t maximumResponseBytes = std::size_t{4} * 1024 * 1024;
constexpr std::size_t maximumNoticeBytes = std::size_t{4} * 1024;

/// The address of a Unix socket. Throws RequestError if the path is empty, too long for a socket or
/// contains a NUL.
class SocketAddress {
 public:
  explicit SocketAddress(const std::string& path);

  [[nodiscard]] const sockaddr* get() const;
  [[nodiscard]] socklen_t size() const { return sizeof(address_); }

 private:
  sockaddr_un address_{};
};

/// Splits a stream of bytes into lines at line feeds. The lines depend on the bytes alone, not
/// on the pieces in which they arrive. The first line beyond the limit ends the stream: nothing can
/// be taken after it.
class LineSplitter {
 public:
  enum class State {
    NeedsBytes,  ///< There is no whole line yet.
    HasLine,     ///< `takeLine` returns one.
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
