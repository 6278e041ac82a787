// Floods zephlin-hidd as the user nobody, until a signal ends it: ServiceFlood DRIPPING QUEUED
//
// So many connections drip the bytes of a request that never ends, and so many keep requests
// queued. Who is turned away comes again at once. Prints at the end how much of it the service has
// taken.

#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Messages.h"
#include "KeyboardService/Protocol/Transport.h"
#include "Tests/VM/RunProgram.h"

namespace zephlin {
namespace {

constexpr uid_t nobody = 65534;
constexpr rlim_t descriptors = 4096;

volatile std::sig_atomic_t isOver = 0;

struct Tally {
  std::size_t connections = 0;
  std::size_t drips = 0;
  std::size_t answers = 0;
};

class Client {
 public:
  Client(bool drips, Tally& tally) : drips_(drips), tally_(tally) {}

  /// Does what it can without waiting.
  void go() {
    if (socket_.isOpen() || connect()) {
      drips_ ? drip() : exchange();
    }
  }

 private:
  bool connect() {
    static const SocketAddress address{std::string(defaultSocketPath)};
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (::connect(socket.get(), address.get(), address.size()) != 0) {
      return false;
    }
    socket_ = std::move(socket);
    ++tally_.connections;
    return true;
  }

  void drip() {
    if (send("x")) {
      ++tally_.drips;
    }
  }

  void exchange() {
    static const std::string requests = [] {
      std::string lines;
      for (int count = 0; count < 20; ++count) {
        lines += encode(ListRequest{}) + '\n';
      }
      return lines;
    }();
    std::array<char, 16384> chunk;
    const ssize_t received = ::recv(socket_.get(), chunk.data(), chunk.size(), 0);
    if (received == 0) {
      socket_.close();
      return;
    }
    for (ssize_t index = 0; index < received; ++index) {
      tally_.answers += chunk[static_cast<std::size_t>(index)] == '\n' ? 1 : 0;
    }
    send(requests);
  }

  bool send(const std::string& bytes) {
    if (::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) >= 0) {
      return true;
    }
    if (errno != EAGAIN) {
      socket_.close();
    }
    return false;
  }

  bool drips_;
  Tally& tally_;
  FileDescriptor socket_;
};

void flood(std::size_t dripping, std::size_t queued) {
  const rlimit limit{descriptors, descriptors};
  if (::setrlimit(RLIMIT_NOFILE, &limit) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0) {
    throw std::runtime_error("start it as root");
  }
  if (::nice(19) != 19) {
    throw std::runtime_error("it cannot be nice");
  }
  std::signal(SIGTERM, [](int) { isOver = 1; });
  Tally tally;
  std::vector<Client> clients;
  for (std::size_t index = 0; index < dripping + queued; ++index) {
    clients.emplace_back(index < dripping, tally);
  }
  while (isOver == 0) {
    for (Client& client : clients) {
      client.go();
    }
  }
  std::cout << tally.connections << ' ' << tally.drips << ' ' << tally.answers << std::endl;
}

}  // namespace
}  // namespace zephlin

int main(int, char** arguments) {
  static char** const numbers = arguments;
  return zephlin::runProgram(
      [] { zephlin::flood(std::stoul(numbers[1]), std::stoul(numbers[2])); });
}
