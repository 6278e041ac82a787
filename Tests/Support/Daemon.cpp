#include "Tests/Support/Daemon.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>

namespace zephlin::test {
namespace {

/// What a server complains of nobody reads.
void becomeDaemon() {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
}

}  // namespace

Daemon::Daemon(const std::vector<std::string>& command)
    : process_(command, becomeDaemon), address_(process_.waitForLine()) {}

void Daemon::kill() {
  process_.send(SIGKILL);
  process_.wait();
}

XServer::XServer()
    : Daemon({"/usr/bin/Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten",
              "tcp"}) {}

MessageBus::MessageBus()
    : Daemon({"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=1"}) {}

}  // namespace zephlin::test
