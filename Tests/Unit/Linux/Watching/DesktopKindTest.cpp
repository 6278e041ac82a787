#include <gtest/gtest.h>

#include "Platform/Linux/Watching/DesktopKind.h"
#include "Tests/Unit/Linux/Watching/Support/EnvironmentVariable.h"
#include "Tests/Unit/Linux/Watching/Support/PrivateXServer.h"

namespace zephlin {
namespace {

TEST(DesktopKind, IsX11WhereAnXServerCanBeReached) {
  const test::PrivateXServer server;
  EXPECT_EQ(currentDesktopKind(), DesktopKind::X11);
}

TEST(DesktopKind, IsWaylandWhereNoXServerCanBeReached) {
  const test::EnvironmentVariable display("DISPLAY", ":no-display");
  EXPECT_EQ(currentDesktopKind(), DesktopKind::Wayland);
}

}  // namespace
}  // namespace zephlin
