#include "Tests/Support/Daemon.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>

namespace zephlin::test {

Daemon::Daemon(const std::vector<std::string>& command, const TestProcess::Body& prepare)
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

Daemon::~Daemon() {
  ::kill(-group_, SIGKILL);
}

void Daemon::kill() {
  ::kill(-group_, SIGKILL);
  process_.wait();
}

XServer::XServer()
    : Daemon({"/usr/bin/Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24", "-nolisten", "tcp",
              "-noreset"}) {}

MessageBus::MessageBus(const std::string& address, const TestProcess::Body& prepare)
    : Daemon({"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=1",
              "--address=" + address},
             prepare) {}

}  // namespace zephlin::test
