// What hidutil says where it cannot reach the keyboard service: why, and what to do next.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

#include "Tests/CLI/KeyboardService/RunningService.h"

namespace zephlin {
namespace {

/// The file modes mean nothing to root.
void stopBeingRoot() {
  if (::geteuid() == 0 && ::setresuid(4242, 4242, 4242) != 0) {
    throw std::runtime_error("cannot become another user");
  }
}

TEST(UnreachableService, AbsenceIsSaidWithWhatToDo) {
  const test::TemporaryDirectory directory;
  const std::string socket = directory.file("s");
  EXPECT_EQ(test::run({hidutilProgram, "--socket", socket, "list"}),
            absence(socket, "No such file or directory"));
}

TEST(UnreachableService, TheSocketOfAKilledOneIsAnAbsenceToo) {
  RunningService service;
  service.process().send(SIGKILL);
  service.process().wait();
  EXPECT_EQ(service.hidutil({"list"}), absence(service.socketPath(), "Connection refused"));
}

TEST(UnreachableService, ASocketThatIsForbiddenIsSaidWithWhatToDo) {
  const RunningService service;
  ASSERT_EQ(::chmod(service.socketPath().c_str(), 0), 0);
  EXPECT_EQ(test::TestProcess(service.command({"list"}), stopBeingRoot).wait(),
            failure("no permission to talk to the keyboard service at " + service.socketPath() +
                    R"( (Permission denied); everyone should have it: restart it as root with )"
                    R"("systemctl restart zephlin-hidd.socket")"));
}

}  // namespace
}  // namespace zephlin
