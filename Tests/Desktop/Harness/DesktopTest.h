#pragma once

#include <gtest/gtest.h>

#include <string>

#include "Tests/Desktop/Harness/App.h"
#include "Tests/Desktop/Harness/Desktop.h"
#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {

/// Tests that run programs in one session, which the tests of a suite share. Each begins with a
/// panel and with keyboards that are not instant. When a wait fails, the screen is among the
/// screenshots under the test's name.
class DesktopTest : public testing::Test {
 public:
  /// For the sessions that are started afterwards.
  static void setShell(MakeShell makeShell);

 protected:
  DesktopTest();
  void TearDown() override;

  static Desktop& desktop();
  static std::string titleOfActiveWindow();
  static void waitForActiveWindow(const std::string& title);
  static void TearDownTestSuite();
};

}  // namespace zephlin::test
