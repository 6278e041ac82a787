#include <gtest/gtest.h>

#include <cstdlib>

#include "Tests/Support/Daemon.h"

namespace zephlin {
namespace {

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
