#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Tests/Support/TestProcess.h"
#include "Tests/Unit/Linux/Session/ReadLine.h"

namespace zephlin {
namespace {

using test::TestProcess;

/// An X server on a display of its own.
class DisplayLossTest : public testing::Test {
 protected:
  DisplayLossTest() {
    Pipe number = makePipe();
    server_ = std::make_unique<TestProcess>(
        std::vector<std::string>{"/usr/bin/Xvfb", "-displayfd",
                                 std::to_string(number.writeEnd.get()), "-nolisten", "tcp"},
        [&number] { ::fcntl(number.writeEnd.get(), F_SETFD, 0); });
    number.writeEnd.close();
    ::setenv("DISPLAY", (":" + test::readLine(number.readEnd)).c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
  }

  std::unique_ptr<TestProcess> server_;
};

TEST_F(DisplayLossTest, TheEndOfTheDisplayIsAnOrderlyEnd) {
  TestProcess process({SESSION_PROGRAM, "display"});
  process.waitForErrors("ready\n");
  server_->send(SIGKILL);
  const test::Outcome outcome = process.wait();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.errors.find("\nZephlin: The X11 connection broke"), std::string::npos)
      << outcome.errors;
}

}  // namespace
}  // namespace zephlin
