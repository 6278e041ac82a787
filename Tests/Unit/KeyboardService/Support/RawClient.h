#pragma once

#include <string>
#include <string_view>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// A client that says to the service whatever a test wants. Its operations block for at most a
/// minute and throw std::runtime_error then, or when the connection is gone.
class RawClient {
 public:
  explicit RawClient(const std::string& socketPath);

  [[nodiscard]] int descriptor() const { return socket_.get(); }

  void send(std::string_view bytes) const;

  /// Sends as much as the socket takes without waiting and returns how many bytes that was.
  std::size_t sendWithoutWaiting(std::string_view bytes) const;

  /// No more will be sent; answers can still come.
  void endSending() const;

  /// The next line without its line feed.
  std::string receiveLine();

  /// Whether a line can be received at once.
  [[nodiscard]] bool hasLine();

  /// Whether the service has closed the connection and all that it sent is received.
  [[nodiscard]] bool isClosed();

  /// Whether the service has closed the connection, whatever is still to be received.
  [[nodiscard]] bool isHungUp() const;

  /// Waits until it has.
  void waitForClose();

  /// Sends a request line and receives the response line.
  std::string ask(std::string_view request);

 private:
  [[nodiscard]] bool hasBytes() const;
  bool receiveMore();

  FileDescriptor socket_;
  std::string received_;
};

}  // namespace zephlin
