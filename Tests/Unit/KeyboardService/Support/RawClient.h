#pragma once

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {

constexpr int timeoutMilliseconds = 60'000;
inline const std::string listRequest = R"({"request":"list","matching":{}})";

inline void waitFor(const FileDescriptor& socket, short event) {
  pollfd polled{socket.get(), event, 0};
  if (::poll(&polled, 1, timeoutMilliseconds) <= 0) {
    throw std::runtime_error("nothing happens on the connection");
  }
}

/// A client that says to the service whatever a test wants. Its operations block for at most a
/// minute and throw std::runtime_error then, or when the connection is gone.
class RawClient {
 public:
  explicit RawClient(const std::string& socketPath)
      : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const SocketAddress address(socketPath);
    if (::connect(socket_.get(), address.get(), address.size()) != 0) {
      throw std::system_error(errno, std::generic_category(), socketPath);
    }
  }

  [[nodiscard]] int descriptor() const { return socket_.get(); }

  void send(std::string_view bytes) const {
    while (!bytes.empty()) {
      waitFor(socket_, POLLOUT);
      bytes.remove_prefix(sendWithoutWaiting(bytes));
    }
  }

  /// Sends as much as the socket takes without waiting and returns how many bytes that was.
  std::size_t sendWithoutWaiting(std::string_view bytes) const {
    const ssize_t sent =
        ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0 && errno != EAGAIN) {
      throw std::system_error(errno, std::generic_category(), "send");
    }
    return sent < 0 ? 0 : static_cast<std::size_t>(sent);
  }

  /// No more will be sent; answers can still come.
  void endSending() const { ::shutdown(socket_.get(), SHUT_WR); }

  /// The next line without its line feed.
  std::string receiveLine() {
    while (received_.find('\n') == std::string::npos) {
      waitFor(socket_, POLLIN);
      if (!receiveMore()) {
        throw std::runtime_error("the connection ended before a line");
      }
    }
    const auto end = received_.find('\n');
    std::string line = received_.substr(0, end);
    received_.erase(0, end + 1);
    return line;
  }

  /// Whether a line can be received at once.
  [[nodiscard]] bool hasLine() {
    if (hasBytes()) {
      receiveMore();
    }
    return received_.find('\n') != std::string::npos;
  }

  /// Whether the service has closed the connection and all that it sent is received.
  [[nodiscard]] bool isClosed() { return hasBytes() && !receiveMore(); }

  /// Whether the service has closed the connection, whatever is still to be received.
  [[nodiscard]] bool isHungUp() const {
    pollfd polled{socket_.get(), 0, 0};
    return ::poll(&polled, 1, 0) > 0 && (polled.revents & POLLHUP) != 0;
  }

  /// Waits until it has.
  void waitForClose() {
    do {
      waitFor(socket_, POLLIN);
    } while (receiveMore());
  }

  /// Sends a request line and receives the response line.
  std::string ask(std::string_view request) {
    send(std::string(request) + '\n');
    return receiveLine();
  }

 private:
  [[nodiscard]] bool hasBytes() const {
    pollfd polled{socket_.get(), POLLIN, 0};
    return ::poll(&polled, 1, 0) > 0;
  }

  bool receiveMore() {
    std::array<char, std::size_t{64} * 1024> chunk;
    const ssize_t count = ::recv(socket_.get(), chunk.data(), chunk.size(), MSG_DONTWAIT);
    if (count > 0) {
      received_.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return count > 0;
  }

  FileDescriptor socket_;
  std::string received_;
};

}  // namespace zephlin
