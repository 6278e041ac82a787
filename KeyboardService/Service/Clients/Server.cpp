#include "KeyboardService/Service/Clients/Server.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

#include "KeyboardService/Protocol/Messages.h"

namespace zephlin {
namespace {

/// By then there may be descriptors again.
constexpr std::chrono::seconds timeBetweenTries{1};

constexpr int acceptsInATurn = 8;

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
  return errorNumber == EINTR || errorNumber == ECONNABORTED;
}

}  // namespace

Server::Server(EventLoop& loop, FileDescriptor listening, Respond respond,
               const ServerLimits& limits)
    : loop_(loop),
      turns_(loop),
      respond_(std::move(respond)),
      limits_(limits),
      listening_(std::move(listening)),
      accepting_(loop.watch(listening_.get(), EPOLLIN,
                            [this](std::uint32_t) {
                              accepting_.setEvents(0);
                              newcomers_.request();
                            })),
      retry_(loop.timer([this] { newcomers_.request(); })),
      newcomers_(turns_, std::nullopt, [this] { acceptSome(); }) {}

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

void Server::respond(std::string_view line, Connection& connection) {
  const auto reply = [this, weak = connection.weak_from_this()](const Response& response) {
    // The server is there if one of its connections is.
    if (const auto asker = weak.lock()) {
      const bool subscribes = std::holds_alternative<SubscribeResponse>(response);
      asker->answer(encode(subscribes ? subscribe(*asker) : response));
    }
  };
  respond_(line, connection.user(), reply);
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
  if (retry_.isEnabled()) {
    retry_.disable();
    newcomers_.request();
  }
}

void Server::acceptSome() {
  for (int tries = 0; tries < acceptsInATurn; ++tries) {
    const int socket = ::accept4(listening_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (socket < 0 && errno == EAGAIN) {
      accepting_.setEvents(EPOLLIN);
      return;
    }
    const bool mayGoOn = socket < 0 ? concernsOneClient(errno) : welcome(FileDescriptor(socket));
    if (!mayGoOn) {
      retry_.setDelay(timeBetweenTries);
      return;
    }
  }
  newcomers_.request();
}

/// Returns whether the system has enough for the next one.
bool Server::welcome(FileDescriptor socket) {
  const auto user = peerOf(socket);
  if (!user) {
    return true;
  }
  if (!hasRoomFor(*user)) {
    turnAway(socket, limits_.connectionsOfAUser);
    return true;
  }
  try {
    auto connection = std::make_shared<Connection>(loop_, turns_, std::move(socket), *user,
                                                   limits_.timeouts, *this);
    const Connection* const key = connection.get();
    connections_.emplace(key, std::move(connection));
    ++connectionsOfUsers_[*user];
    return true;
  } catch (const std::system_error&) {
    return false;  // The system cannot watch one more socket; the client sees it closed.
  }
}

bool Server::hasRoomFor(uid_t user) const {
  const auto count = connectionsOfUsers_.find(user);
  return user == 0 || count == connectionsOfUsers_.end() ||
         count->second < limits_.connectionsOfAUser;
}

}  // namespace zephlin
