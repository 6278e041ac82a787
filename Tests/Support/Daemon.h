#pragma once

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
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
      const std::vector<std::string>& command, const TestProcess::Body& prepare = [] {})
      : process_(command,
                 [&prepare] {
                   ::setpgid(0, 0);
                   ::prctl(PR_SET_PDEATHSIG, SIGKILL);
                   // Nobody reads what a server complains about.
                   ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
                   prepare();
                 }),
        group_(process_.id()),
        address_(process_.waitForLine()) {}

  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;
  ~Daemon() { ::kill(-group_, SIGKILL); }

  [[nodiscard]] const std::string& address() const { return address_; }

  void kill() {
    ::kill(-group_, SIGKILL);
    process_.wait();
  }

 private:
  TestProcess process_;
  pid_t group_;
  std::string address_;
};

/// An X server with a screen in memory, which keeps its state when its last client leaves. Its
/// address is the display's number.
class XServer : public Daemon {
 public:
  XServer()
      : Daemon({"/usr/bin/Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten",
                "tcp", "-noreset"}) {}
};

/// An empty message bus, also for what a system bus is asked.
class MessageBus : public Daemon {
 public:
  /// `prepare` may set the environment of the programs that the bus activates.
  explicit MessageBus(
      const std::string& address = "unix:tmpdir=/tmp", const TestProcess::Body& prepare = [] {})
      : Daemon({"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=1",
                "--address=" + address},
               prepare) {}
};

}  // namespace zephlin::test
