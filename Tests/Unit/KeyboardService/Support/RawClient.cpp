#include "Tests/Unit/KeyboardService/Support/RawClient.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {
namespace {

constexpr int timeoutMilliseconds = 60'000;

void waitFor(const FileDescriptor& socket, short event) {
  pollfd polled{socket.get(), event, 0};
  if (::poll(&polled, 1, timeoutMilliseconds) <= 0) {
    throw std::runtime_error("nothing happens on the connection");
  }
}

}  // namespace

RawClient::RawClient(const std::string& socketPath)
    : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const SocketAddress address(socketPath);
  if (::connect(socket_.get(), address.get(), address.size()) != 0) {
    throw std::system_error(errno, std::generic_category(), socketPath);
  }
}

void RawClient::send(std::string_view bytes) const {
  while (!bytes.empty()) {
    waitFor(socket_, POLLOUT);
    bytes.remove_prefix(sendWithoutWaiting(bytes));
  }
}

std::size_t RawClient::sendWithoutWaiting(std::string_view bytes) const {
  const ssize_t sent =
      ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  if (sent < 0 && errno != EAGAIN) {
    throw std::system_error(errno, std::generic_category(), "send");
  }
  return sent < 0 ? 0 : static_cast<std::size_t>(sent);
}

void RawClient::endSending() const {
  ::shutdown(socket_.get(), SHUT_WR);
}

std::string RawClient::receiveLine() {
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

bool RawClient::hasLine() {
  if (hasBytes()) {
    receiveMore();
  }
  return received_.find('\n') != std::string::npos;
}

bool RawClient::isClosed() {
  return hasBytes() && !receiveMore();
}

bool RawClient::isHungUp() const {
  pollfd polled{socket_.get(), 0, 0};
  return ::poll(&polled, 1, 0) > 0 && (polled.revents & POLLHUP) != 0;
}

void RawClient::waitForClose() {
  do {
    waitFor(socket_, POLLIN);
  } while (receiveMore());
}

std::string RawClient::ask(std::string_view request) {
  send(std::string(request) + '\n');
  return receiveLine();
}

/// Whether receiving would not wait.
bool RawClient::hasBytes() const {
  pollfd polled{socket_.get(), POLLIN, 0};
  return ::poll(&polled, 1, 0) > 0;
}

/// Whether the connection still stood.
bool RawClient::receiveMore() {
  std::array<char, std::size_t{64} * 1024> chunk;
  const ssize_t count = ::recv(socket_.get(), chunk.data(), chunk.size(), MSG_DONTWAIT);
  if (count > 0) {
    received_.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return count > 0;
}

}  // namespace zephlin
