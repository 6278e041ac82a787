#pragma once

#include <sys/types.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Service/Clients/Connection.h"
#include "KeyboardService/Service/EventLoop.h"
#include "KeyboardService/Service/RequestHandler.h"

namespace zephlin {

struct ServerLimits {
  /// How long a client may leave a request unfinished or a response unread.
  std::chrono::microseconds timeout = std::chrono::seconds(30);

  /// How many connections each user other than root may have.
  std::size_t connectionsOfAUser = 512;

  /// How many of these may be subscriptions. Subscriptions that are never ended must not keep their
  /// user from making requests.
  std::size_t subscriptionsOfAUser = 64;
};

/// Keeps clients from occupying the service's thread without a pause. It is a real-time thread: no
/// other process would get its processor, and the kernel would end up killing it (RLIMIT_RTTIME,
/// setrlimit(2)). A burst of work is followed by as much rest.
class WorkBudget {
 public:
  using Time = std::chrono::nanoseconds;

  static constexpr Time burst = std::chrono::milliseconds(20);

  /// How long to rest, given the time `now` on any clock and the total time that the thread has
  /// `worked`. To be called before each piece of work.
  Time rest(Time now, Time worked) {
    evenAt_ = std::max(evenAt_, asked_) + 2 * (worked - worked_);
    asked_ = now;
    worked_ = worked;
    if (evenAt_ - now >= burst) {
      restsUntil_ = evenAt_;
    }
    return std::max(restsUntil_ - now, Time::zero());
  }

 private:
  Time evenAt_{};  ///< When there has been as much rest as work.
  Time restsUntil_{};
  Time asked_{};
  Time worked_{};
};

/// Accepts clients and has their requests handled, on the thread of the loop. When descriptors have
/// run out, it accepts no more clients until one leaves or a second has passed. It works for at
/// most half of the time, whatever the number of requests.
class Server {
 public:
  /// `listening` does not block. The loop and the handler outlive the server.
  Server(EventLoop& loop, FileDescriptor listening, RequestHandler& handler, ServerLimits limits);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() = default;

  /// Sends a notice to every subscribed connection.
  void announce(const AppearedNotice& notice);

  /// For its connections: the response line to a request line, both without line feed.
  std::string respond(std::string_view line, Connection& connection);

  /// For its connections: how long the next request has to wait.
  [[nodiscard]] std::chrono::microseconds restBeforeRequest();

  /// For its connections: destroys the caller, which has nothing more to do.
  void connectionEnded(Connection& connection);

 private:
  Response subscribe(Connection& connection);
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
