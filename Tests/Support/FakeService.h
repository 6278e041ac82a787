#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

#include "Base/FileDescriptor.h"
#include "Tests/Support/QtLoop.h"

namespace zephlin::test {

/// A keyboard service with one client, which answers what the test says. Its socket's file stays,
/// as that of a service that was killed.
class FakeService {
 public:
  enum class Socket { Listening, Bound };

  /// Throws std::system_error where the path cannot be bound.
  explicit FakeService(const std::string& path, Socket socket = Socket::Listening)
      : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    if (::bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      throw std::system_error(errno, std::generic_category(), path);
    }
    if (socket == Socket::Listening) {
      listen();
    }
  }

  void listen() { ::listen(listener_.get(), SOMAXCONN); }

  /// Whether a client comes, while Qt's loop runs. A former one is hung up on first.
  bool accept() {
    hangUp();
    return eventually([this] {
      client_ = FileDescriptor(
          ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
      return client_.isOpen();
    });
  }

  /// Whether a client comes, asks to subscribe and takes the answer.
  bool acceptSubscription() {
    if (!accept() || !receivesRequest()) {
      return false;
    }
    send("{\"subscribed\":true}\n");
    return true;
  }

  void send(const std::string& bytes) {
    ::send(client_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
  }

  void hangUp() { client_.close(); }
  [[nodiscard]] bool hasClient() const { return client_.isOpen(); }
  /// Whether another client is waiting to be accepted.
  [[nodiscard]] bool isAwaited() const {
    pollfd polled{listener_.get(), POLLIN, 0};
    return ::poll(&polled, 1, 0) > 0;
  }

  /// Whether the client hangs up, while Qt's loop runs.
  bool isHungUpOn() {
    return eventually([this] {
      std::array<char, 100> bytes{};
      const ssize_t count = ::recv(client_.get(), bytes.data(), bytes.size(), 0);
      // What it has not read of us makes its end a reset.
      return count == 0 || (count < 0 && errno == ECONNRESET);
    });
  }

 private:
  bool receivesRequest() {
    const std::string request = "{\"request\":\"subscribe\"}\n";
    std::string received;
    eventually([&] {
      std::array<char, 100> bytes{};
      const ssize_t count = ::recv(client_.get(), bytes.data(), bytes.size(), 0);
      received.append(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
      return received.size() >= request.size();
    });
    return received == request;
  }

  FileDescriptor listener_;
  FileDescriptor client_;
};

}  // namespace zephlin::test
