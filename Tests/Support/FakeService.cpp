#include "Tests/Support/FakeService.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "Tests/Support/QtLoop.h"

namespace zephlin::test {

FakeService::FakeService(const std::string& path, Socket socket)
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

void FakeService::listen() {
  ::listen(listener_.get(), SOMAXCONN);
}

bool FakeService::accept() {
  hangUp();
  return eventually([this] {
    client_ =
        FileDescriptor(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    return client_.isOpen();
  });
}

bool FakeService::acceptSubscription() {
  if (!accept() || !receivesRequest()) {
    return false;
  }
  send("{\"subscribed\":true}\n");
  return true;
}

bool FakeService::isAwaited() const {
  pollfd polled{listener_.get(), POLLIN, 0};
  return ::poll(&polled, 1, 0) > 0;
}

void FakeService::send(const std::string& bytes) {
  ::send(client_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

bool FakeService::isHungUpOn() {
  return eventually([this] {
    std::array<char, 100> bytes{};
    const ssize_t count = ::recv(client_.get(), bytes.data(), bytes.size(), 0);
    // What it has not read of us makes its end a reset.
    return count == 0 || (count < 0 && errno == ECONNRESET);
  });
}

bool FakeService::receivesRequest() {
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

}  // namespace zephlin::test
