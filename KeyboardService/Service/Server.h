#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Service/Connection.h"
#include "KeyboardService/Service/EventLoop.h"
#include "KeyboardService/Service/RequestHandler.h"
#include "KeyboardService/Service/WorkBudget.h"

namespace zephlin {

struct ServerLimits {
  /// How long a client may leave a request unfinished or a response untaken.
  std::chrono::microseconds timeout = std::chrono::seconds(30);

  /// How many connections each user other than root may have.
  std::size_t connectionsOfAUser = 512;

  /// How many of these may be subscriptions, which last: whatever subscribes and forgets to leave,
  /// its user can still make requests.
  std::size_t subscriptionsOfAUser = 64;
};

/// Accepts clients and has their requests handled, on the thread of the loop. When the system has
/// no descriptor for one more client, it accepts no more until one leaves or a second has passed.
/// However many requests there are, it works for half of the time at most.
class Server final : private ConnectionOwner {
 public:
  /// `listening` does not block. The loop and the handler outlive the server.
  Server(EventLoop& loop, FileDescriptor listening, RequestHandler& handler, ServerLimits limits);

  /// Tells every subscribed connection.
  void announce(const AppearedNotice& notice);

 private:
  std::string respond(std::string_view line, Connection& connection) override;
  [[nodiscard]] std::chrono::microseconds restBeforeRequest() override;
  Response subscribe(Connection& connection);
  void connectionEnded(Connection& connection) override;

  void acceptOne();
  void welcome(FileDescriptor socket);
  [[nodiscard]] bool hasRoomFor(uid_t user) const;
  void pauseAccepting(std::chrono::microseconds pause);
  void resumeAccepting();

  EventLoop& loop_;
  RequestHandler& handler_;
  ServerLimits limits_;
  WorkBudget budget_;
  FileDescriptor listening_;
  EventSource accepting_;
  EventSource retry_;
  std::map<const Connection*, std::unique_ptr<Connection>> connections_;
  std::map<uid_t, std::size_t> connectionsOfUsers_;
};

}  // namespace zephlin
