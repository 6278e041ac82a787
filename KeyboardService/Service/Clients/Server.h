#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string_view>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Messages.h"
#include "KeyboardService/Service/Clients/Connection.h"
#include "KeyboardService/Service/Clients/Turns.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

struct ServerLimits {
  ClientTimeouts timeouts;

  /// How many connections each user other than root may have.
  std::size_t connectionsOfAUser = 64;

  /// How many of these may be subscriptions. Subscriptions that are never ended must not keep their
  /// user from making requests.
  std::size_t subscriptionsOfAUser = 16;
};

/// Accepts clients and has their requests answered, on the thread of the loop. When descriptors
/// have run out, it accepts no more clients until one leaves or a second has passed.
class Server {
 public:
  using Reply = std::function<void(const Response& response)>;

  /// Answers a request line of a user: has `reply` called once, within the call or later from the
  /// loop. The server carries out a subscription.
  using Respond = std::function<void(std::string_view line, uid_t user, const Reply& reply)>;

  /// `listening` does not block. The loop outlives the server.
  Server(EventLoop& loop, FileDescriptor listening, Respond respond, const ServerLimits& limits);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() = default;

  /// Sends a notice to every subscribed connection.
  void announce(const AppearedNotice& notice);

  /// For its connections: gives the caller its answer, within the call or later.
  void respond(std::string_view line, Connection& connection);

  /// For its connections: destroys the caller, which has nothing more to do.
  void connectionEnded(Connection& connection);

 private:
  Response subscribe(Connection& connection);
  void acceptSome();
  bool welcome(FileDescriptor socket);
  [[nodiscard]] bool hasRoomFor(uid_t user) const;

  EventLoop& loop_;
  Turns turns_;
  Respond respond_;
  ServerLimits limits_;
  FileDescriptor listening_;
  EventSource accepting_;
  EventSource retry_;
  Turn newcomers_;
  std::map<const Connection*, std::shared_ptr<Connection>> connections_;
  std::map<uid_t, std::size_t> connectionsOfUsers_;
};

}  // namespace zephlin
