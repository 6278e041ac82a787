#include "KeyboardService/Client/ServiceClient.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <string_view>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Container.h"
#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// One exchange with the service, from connecting to the response.
class Exchange {
 public:
  explicit Exchange(const std::string& socketPath) : path_(printable(socketPath)) {
    connect(SocketAddress(socketPath));
  }

  void send(std::string_view bytes);
  std::string receiveLine();

 private:
  void connect(const SocketAddress& address);
  void waitFor(short event);
  [[nodiscard]] milliseconds remaining() const;
  [[nodiscard]] RequestError unreachable(int errorNumber) const;
  [[nodiscard]] RequestError silent() const;
  [[nodiscard]] RequestError misbehaving(const std::string& how) const;

  std::string path_;
  steady_clock::time_point deadline_ = steady_clock::now() + serviceTimeout;
  FileDescriptor socket_;
};

milliseconds Exchange::remaining() const {
  const auto left = std::chrono::ceil<milliseconds>(deadline_ - steady_clock::now());
  if (left <= milliseconds::zero()) {
    throw silent();
  }
  return left;
}

RequestError Exchange::unreachable(int errorNumber) const {
  if (errorNumber == EACCES || errorNumber == EPERM) {
    return RequestError("no permission to talk to the keyboard service at " + path_ +
                        errnoText(errorNumber) +
                        R"(; everyone should have it: restart it as root with )"
                        R"("systemctl restart zephlin-hidd.socket")");
  }
  const auto advice = containerAdvice();
  return RequestError(
      "no keyboard service at " + path_ + errnoText(errorNumber) + "; " +
      (advice ? *advice + R"(, or start "zephlin-hidd" here if this container has /dev/input)"
              : R"(start it as root with "systemctl start zephlin-hidd.socket", or without )"
                R"(systemd with "zephlin-hidd")"));
}

RequestError Exchange::silent() const {
  return misbehaving("did not answer within " + std::to_string(serviceTimeout.count()) +
                     " seconds");
}

RequestError Exchange::misbehaving(const std::string& how) const {
  return RequestError(
      "the keyboard service at " + path_ + ' ' + how +
      R"(; try again, or restart it as root with "systemctl restart zephlin-hidd")");
}

void Exchange::connect(const SocketAddress& address) {
  socket_ = FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!socket_.isOpen()) {
    throw RequestError("cannot create a socket" + errnoText(errno) + "; close some programs");
  }
  // connect() waits while the service's queue is full; this bounds the wait.
  const auto limit = remaining();
  timeval wait{};
  wait.tv_sec = limit.count() / 1000;
  wait.tv_usec = limit.count() % 1000 * 1000;
  ::setsockopt(socket_.get(), SOL_SOCKET, SO_SNDTIMEO, &wait, sizeof wait);
  if (::connect(socket_.get(), address.get(), address.size()) != 0) {
    throw errno == EAGAIN ? silent() : unreachable(errno);
  }
}

void Exchange::waitFor(short event) {
  pollfd polled{socket_.get(), event, 0};
  if (::poll(&polled, 1, static_cast<int>(remaining().count())) == 0) {
    throw silent();
  }
}

void Exchange::send(std::string_view bytes) {
  while (!bytes.empty()) {
    waitFor(POLLOUT);
    const ssize_t sent =
        ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno != EAGAIN && errno != EINTR) {
      // The service may have sent the reason before it closed the connection; reading shows it.
      return;
    }
  }
}

std::string Exchange::receiveLine() {
  std::string line;
  std::array<char, std::size_t{64} * 1024> chunk;
  while (line.size() <= maximumResponseBytes) {
    waitFor(POLLIN);
    const ssize_t received = ::recv(socket_.get(), chunk.data(), chunk.size(), MSG_DONTWAIT);
    if (received < 0 && (errno == EAGAIN || errno == EINTR)) {
      continue;
    }
    if (received <= 0) {
      throw misbehaving("closed the connection without a response");
    }
    const std::string_view bytes(chunk.data(), static_cast<std::size_t>(received));
    const auto end = bytes.find('\n');
    line += bytes.substr(0, end);
    if (end != std::string_view::npos) {
      return line;
    }
  }
  throw misbehaving("sent an endless response");
}

}  // namespace

std::string askService(const std::string& socketPath, const std::string& requestLine) {
  if (requestLine.size() > maximumRequestBytes) {
    throw RequestError("the request is too long (" + std::to_string(requestLine.size()) +
                       " bytes of at most " + std::to_string(maximumRequestBytes) +
                       "); ask for less at once");
  }
  Exchange exchange(socketPath);
  exchange.send(requestLine + '\n');
  return exchange.receiveLine();
}

std::string misunderstoodService(const std::string& socketPath) {
  return "the keyboard service at " + printable(socketPath) +
         " sent a response that cannot be understood; check that hidutil and zephlin-hidd are the "
         "same version";
}

}  // namespace zephlin
