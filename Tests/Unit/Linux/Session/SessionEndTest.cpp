#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "Tests/Support/Daemon.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin {
namespace {

using test::TestProcess;

class QuitSignalsTest : public testing::TestWithParam<int> {
 protected:
  QuitSignalsTest() {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0700));
    ::setenv("XDG_RUNTIME_DIR", directory_.path().c_str(), 1);
  }

  test::TemporaryDirectory directory_;
};

TEST_P(QuitSignalsTest, TheSignalEndsTheLoopInOrder) {
  TestProcess process({SESSION_PROGRAM, "quit-signals"});
  process.waitForErrors("ready\n");
  process.send(GetParam());
  EXPECT_EQ(process.wait(), (test::Outcome{0, "", "ready\nquits\n"}));
}

TEST_P(QuitSignalsTest, ASignalThatIsIgnoredFromTheStartStaysSo) {
  TestProcess process({SESSION_PROGRAM, "quit-signals"}, [] { ::signal(GetParam(), SIG_IGN); });
  process.waitForErrors("ready\n");
  process.send(GetParam());
  std::ifstream status("/proc/" + std::to_string(process.id()) + "/status");
  unsigned long ignored = 0;
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("SigIgn:")) {
      ignored = std::stoul(line.substr(7), nullptr, 16);
    }
  }
  EXPECT_NE(ignored & (1UL << static_cast<unsigned>(GetParam() - 1)), 0U);
  process.send(GetParam() == SIGTERM ? SIGINT : SIGTERM);
  EXPECT_EQ(process.wait().errors, "ready\nquits\n");
}

INSTANTIATE_TEST_SUITE_P(EachSignal, QuitSignalsTest, testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST(DisplayLossTest, TheEndOfTheDisplayIsAnOrderlyEnd) {
  test::XServer server;
  ::setenv("DISPLAY", (":" + server.address()).c_str(), 1);
  ::setenv("QT_QPA_PLATFORM", "xcb", 1);
  test::TestProcess process({SESSION_PROGRAM, "display"});
  process.waitForErrors("ready\n");
  server.kill();
  const test::Outcome outcome = process.wait();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.errors.find("\nZephlin: The X11 connection broke"), std::string::npos)
      << outcome.errors;
}

}  // namespace
}  // namespace zephlin
