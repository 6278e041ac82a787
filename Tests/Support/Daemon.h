#pragma once

#include <string>
#include <vector>

#include "Tests/Support/TestProcess.h"

namespace zephlin::test {

/// A server of the test's own, killed at the end, or by the kernel when the test itself is.
class Daemon {
 public:
  /// Starts it and waits for its first line of output, which tells that it can be reached, and
  /// where. Throws std::runtime_error if there is none within a minute.
  explicit Daemon(const std::vector<std::string>& command);

  [[nodiscard]] const std::string& address() const { return address_; }

  void kill();

 private:
  TestProcess process_;
  std::string address_;
};

/// An X server with a screen in memory. Its address is the display's number.
class XServer : public Daemon {
 public:
  XServer();
};

/// An empty session bus.
class MessageBus : public Daemon {
 public:
  MessageBus();
};

}  // namespace zephlin::test
