#include "KeyboardService/Service/Clients/Server.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <optional>
#include <system_error>

#include "KeyboardService/Protocol/Messages.h"

namespace zephlin {
namespace {

/// By then there may be descriptors again.
constexpr std::chrono::seconds timeBetweenTries{1};

std::chrono::nanoseconds timeOn(clockid_t clock) {
  timespec time{};
  ::clock_gettime(clock, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::optional<uid_t> peerOf(const FileDescriptor& socket) {
  ucred credentials{};
  socklen_t size = sizeof credentials;
  if (::getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) {
    return std::nullopt;
  }
  return credentials.uid;
}

/// Sends the reason, if the client's socket takes it at once.
void turnAway(const FileDescriptor& socket, std::size_t limit) {
  const std::string line =
      encode(ErrorResponse{"connection limit reached (" + std::to_string(limit) +
                           " per user); close some connections"}) +
      '\n';
  ::send(socket.get(), line.data(), line.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

/// Whether the next accept may succeed all the same.
bool concernsOneClient(int errorNumber) {
  return errorNumber == EAGAIN || errorNumber == EINTR || errorNumber == ECONNABORTED;
}

}  // namespace

Server::Server(EventLoop& loop, FileDescriptor listening, RequestHandler& handler,
               ServerLimits limits)
    : loop_(loop),
      handler_(handler),
      limits_(limits),
      listening_(std::move(listening)),
      accepting_(loop.watch(listening_.get(), EPOLLIN, [this](std::uint32_t) { acceptOne(); })),
      retry_(loop.timer([this] { resumeAccepting(); })) {}

void Server::announce(const AppearedNotice& notice) {
  const std::string line = encode(notice);
  for (auto each = connections_.begin(); each != connections_.end();) {
    // A connection that ends within the call takes itself out of the map.
    Connection& connection = *(each++)->second;
    if (connection.isSubscribed()) {
      connection.tell(line);
    }
  }
}

std::string Server::respond(std::string_view line, Connection& connection) {
  std::string answer;
  handler_.respond(line, connection.user(), [&](const Response& response) {
    const bool subscribes = std::holds_alternative<SubscribeResponse>(response);
    answer = encode(subscribes ? subscribe(connection) : response);
  });
  return answer;
}

std::chrono::microseconds Server::restBeforeRequest() {
  return std::chrono::ceil<std::chrono::microseconds>(
      budget_.rest(timeOn(CLOCK_MONOTONIC), timeOn(CLOCK_THREAD_CPUTIME_ID)));
}

Response Server::subscribe(Connection& connection) {
  const uid_t user = connection.user();
  const auto subscriptions =
      std::count_if(connections_.begin(), connections_.end(), [user](const auto& each) {
        return each.second->user() == user && each.second->isSubscribed();
      });
  if (user != 0 && static_cast<std::size_t>(subscriptions) >= limits_.subscriptionsOfAUser) {
    return ErrorResponse{"subscription limit reached (" +
                         std::to_string(limits_.subscriptionsOfAUser) +
                         " per user); end some subscriptions"};
  }
  connection.subscribe();
  return SubscribeResponse{};
}

void Server::connectionEnded(Connection& connection) {
  const auto count = connectionsOfUsers_.find(connection.user());
  if (--count->second == 0) {
    connectionsOfUsers_.erase(count);
  }
  connections_.erase(&connection);
  resumeAccepting();
}

void Server::acceptOne() {
  if (const auto rest = restBeforeRequest(); rest > rest.zero()) {
    pauseAccepting(rest);
    return;
  }
  FileDescriptor socket(
      ::accept4(listening_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
  if (socket.isOpen()) {
    welcome(std::move(socket));
  } else if (!concernsOneClient(errno)) {
    pauseAccepting(timeBetweenTries);
  }
}

void Server::welcome(FileDescriptor socket) {
  const auto user = peerOf(socket);
  if (!user) {
    return;
  }
  if (!hasRoomFor(*user)) {
    turnAway(socket, limits_.connectionsOfAUser);
    return;
  }
  try {
    auto connection =
        std::make_unique<Connection>(loop_, std::move(socket), *user, limits_.timeout, *this);
    const Connection* const key = connection.get();
    connections_.emplace(key, std::move(connection));
    ++connectionsOfUsers_[*user];
  } catch (const std::system_error&) {
    // The system cannot watch one more socket; the client sees its connection closed.
    pauseAccepting(timeBetweenTries);
  }
}

bool Server::hasRoomFor(uid_t user) const {
  const auto count = connectionsOfUsers_.find(user);
  return user == 0 || count == connectionsOfUsers_.end() ||
         count->second < limits_.connectionsOfAUser;
}

void Server::pauseAccepting(std::chrono::microseconds pause) {
  accepting_.disable();
  retry_.setDelay(pause);
}

void Server::resumeAccepting() {
  retry_.disable();
  accepting_.enable();
}

}  // namespace zephlin
