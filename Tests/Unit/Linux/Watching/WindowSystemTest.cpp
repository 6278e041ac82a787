#include <gtest/gtest.h>

#include "Platform/Linux/Watching/WindowSystem.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/PrivateXServer.h"

namespace zephlin {
namespace {

TEST(WindowSystem, IsX11IfAnXServerCanBeReached) {
  const test::PrivateXServer server;
  EXPECT_EQ(currentWindowSystem(), WindowSystem::X11);
}

TEST(WindowSystem, IsWaylandIfNoXServerCanBeReached) {
  const test::EnvironmentVariable display("DISPLAY", ":no-display");
  EXPECT_EQ(currentWindowSystem(), WindowSystem::Wayland);
}

}  // namespace
}  // namespace zephlin
