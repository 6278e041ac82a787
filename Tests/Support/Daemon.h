#pragma once

#include <string>
#include <vector>

#include "Tests/Support/TestProcess.h"

namespace zephlin::test {

/// A server of the test's own in a process group of its own. The group is killed at the end, and
/// the server also when the test dies.
class Daemon {
 public:
  /// Starts it, after `prepare` in the child, and waits for its first line of output: the address
  /// that it can be reached at. Throws std::runtime_error after a minute without one.
  explicit Daemon(
      const std::vector<std::string>& command, const TestProcess::Body& prepare = [] {});
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;
  ~Daemon();

  [[nodiscard]] const std::string& address() const { return address_; }

  void kill();

 private:
  TestProcess process_;
  pid_t group_;
  std::string address_;
};

/// An X server with a screen in memory, which keeps its state when its last client leaves. Its
/// address is the display's number.
class XServer : public Daemon {
 public:
  XServer();
};

/// An empty message bus, also for what a system bus is asked.
class MessageBus : public Daemon {
 public:
  /// `prepare` may set the environment of the programs that the bus activates.
  explicit MessageBus(
      const std::string& address = "unix:tmpdir=/tmp", const TestProcess::Body& prepare = [] {});
};

}  // namespace zephlin::test
