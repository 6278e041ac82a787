#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Transport.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

class Server;

/// One client. It answers one request line per turn of the loop, so that no client keeps the others
/// waiting, and reads nothing while a response is unsent, so that it holds at most one request and
/// one response in memory. It ends when the client has closed its side, after a line that is too
/// long, and when the client has made no progress with a request or a response for `timeout`.
///
/// A subscribed connection has no timeout. It ends when the client leaves too many bytes unread, or
/// sends another request, which is refused.
class Connection {
 public:
  /// `socket` is a connected stream socket that does not block. `server` owns the connection.
  Connection(EventLoop& loop, FileDescriptor socket, uid_t user, std::chrono::microseconds timeout,
             Server& server);

  [[nodiscard]] uid_t user() const { return user_; }
  [[nodiscard]] bool isSubscribed() const { return subscribed_; }

  /// Only while the server is asked for a response, which is then the last one.
  void subscribe() { subscribed_ = true; }

  /// Sends a line, given without line feed, to a subscribed connection. May end it.
  void tell(std::string_view line);

 private:
  void onSocket(std::uint32_t events);
  void receive();
  void send();
  void proceed();
  [[nodiscard]] bool isOver() const;
  void takeRequest();
  void waitForClient(std::uint32_t events, bool midway);
  void end();

  uid_t user_;
  std::chrono::microseconds timeout_;
  Server& server_;
  LineSplitter input_;
  std::string output_;
  bool subscribed_ = false;
  bool inputEnded_ = false;
  bool lastResponse_ = false;
  bool broken_ = false;
  bool progressed_ = false;
  FileDescriptor socket_;
  EventSource watch_;
  EventSource nextRequest_;
  EventSource stalled_;
};

}  // namespace zephlin
