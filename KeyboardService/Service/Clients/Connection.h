#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Transport.h"
#include "KeyboardService/Service/Clients/Turns.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

class Server;

/// How long a client may take to send a request or to receive a response.
struct ClientTimeouts {
  std::chrono::microseconds progress = std::chrono::seconds(30);  ///< From one byte to the next.
  std::chrono::microseconds whole = std::chrono::minutes(2);
};

/// One client. In a turn it receives at most 16 KiB, or has one request answered, or sends what the
/// socket takes of a response. It reads nothing while a response is not there or not sent, so that
/// it holds at most one request and one response in memory. It ends when the client has closed its
/// side, after a line that is too long, and when the client takes too long.
///
/// A subscribed connection has no timeout. It ends when the client leaves too many bytes unread, or
/// sends another request, which is refused.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  /// `socket` is a connected stream socket that does not block. `server` owns the connection.
  Connection(EventLoop& loop, Turns& turns, FileDescriptor socket, uid_t user,
             const ClientTimeouts& timeouts, Server& server);

  [[nodiscard]] uid_t user() const { return user_; }
  [[nodiscard]] bool isSubscribed() const { return subscribed_; }

  /// Sends the response line, given without line feed, to the request that the server was asked to
  /// answer. May end the connection.
  void answer(std::string_view line);

  /// Just before the answer that says so, which is the last one.
  void subscribe() { subscribed_ = true; }

  /// Sends a line, given without line feed, to a subscribed connection. May end it.
  void tell(std::string_view line);

 private:
  void onSocket(std::uint32_t events);
  void takeTurn();
  void receive();
  void say(std::string_view line);
  void send();
  void proceed();
  [[nodiscard]] bool isOver() const;
  void takeRequest();
  void ask(std::string_view line);
  void waitForTurn();
  void waitForClient(std::uint32_t events, bool midway);
  void end();

  uid_t user_;
  ClientTimeouts timeouts_;
  Server& server_;
  LineSplitter input_;
  std::string output_;
  std::uint32_t ready_ = 0;  ///< What the socket was ready for when the turn was requested.
  bool awaitsAnswer_ = false;
  bool subscribed_ = false;
  bool inputEnded_ = false;
  bool lastResponse_ = false;
  bool broken_ = false;

  /// Since when the client has been midway in a request or a response.
  std::optional<std::chrono::steady_clock::time_point> midwaySince_;

  FileDescriptor socket_;
  EventSource watch_;
  EventSource stalled_;
  Turn turn_;
};

}  // namespace zephlin
