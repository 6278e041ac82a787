#include "Tests/Contract/LinuxEnvironment.h"

#include <gtest/gtest.h>

namespace zephlin::contract {

namespace {

std::unique_ptr<LinuxEnvironment>& theEnvironment() {
  static std::unique_ptr<LinuxEnvironment> environment;
  return environment;
}

class EnvironmentOfAllTests final : public testing::Environment {
 public:
  void SetUp() override { theEnvironment() = std::make_unique<LinuxEnvironment>(); }
  void TearDown() override { theEnvironment().reset(); }
};

const testing::Environment* const registered =
    testing::AddGlobalTestEnvironment(new EnvironmentOfAllTests);

}  // namespace

LinuxEnvironment::LinuxEnvironment() {
  qputenv("DBUS_SESSION_BUS_ADDRESS", sessionBus_.address().c_str());
  qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + busFolder_.filePath("bus").toUtf8());
  systemBus_ = std::make_unique<test::PrivateSystemBus>();
  qputenv("QT_QPA_PLATFORM", "xcb");
  // Without what the desktop that the test is started on would add.
  qunsetenv("QT_QPA_PLATFORMTHEME");
  qunsetenv("XDG_CURRENT_DESKTOP");
}

LinuxEnvironment& linuxEnvironment() {
  return *theEnvironment();
}

}  // namespace zephlin::contract
