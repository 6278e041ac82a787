#include <gtest/gtest.h>

#include <new>

#include "Platform/Workspace.h"
#include "Tests/Unit/ZephlinCore/FakeRunner.h"
#include "Zephlin/ZephlinCLI.h"

namespace zephlin {

namespace {

constexpr int ownIdentifier = 100;
std::vector<RunningApplication> runningInstances;
std::string askedFor;
bool lookupFails = false;

}  // namespace

// Another body of Workspace.h.
std::vector<RunningApplication> runningApplicationsWithBundleIdentifier(
    std::string_view bundleIdentifier) {
  askedFor = bundleIdentifier;
  if (lookupFails) {
    throw std::bad_alloc();
  }
  return runningInstances;
}

int currentProcessIdentifier() {
  return ownIdentifier;
}

namespace {

using test::FakeRunner;

class ZephlinCLITest : public testing::Test {
 protected:
  void SetUp() override {
    FakeRunner::shared() = {};
    runningInstances.clear();
    askedFor.clear();
    lookupFails = false;
  }

  std::string restoreWhile(std::vector<RunningApplication> instances) {
    runningInstances = std::move(instances);
    FakeRunner::shared().results = {{0, false, ""}};
    testing::internal::CaptureStdout();
    EXPECT_EQ(ZephlinCLI::run("restore"), 0);
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
  }

  const std::string report_ =
      "Restored Apple default Caps Lock behavior (75 ms delay). A reboot resets the override "
      "entirely.\n";
  const std::string note_ =
      "note: the Zephlin menu bar app is running and will re-assert its own setting and undo this "
      "restore. Prefer the ⇪ menu toggle while it runs.\n";
};

TEST_F(ZephlinCLITest, ThereAreSixKnownCommands) {
  EXPECT_EQ(ZephlinCLI::knownCommands(),
            (std::set<std::string>{"apply", "restore", "status", "help", "--help", "-h"}));
}

TEST_F(ZephlinCLITest, InstancesAreLookedUpByTheBundleIdentifier) {
  restoreWhile({});
  EXPECT_EQ(askedFor, "com.quorvenel.zephlin");
}

TEST_F(ZephlinCLITest, ARunningInstanceGivesANoteBehindTheReport) {
  EXPECT_EQ(restoreWhile({{200}}), report_ + note_);
  EXPECT_EQ(restoreWhile({}), report_);
}

TEST_F(ZephlinCLITest, AProcessThatFindsItselfFirstGivesNoNote) {
  EXPECT_EQ(restoreWhile({{ownIdentifier}}), report_);
  EXPECT_EQ(restoreWhile({{ownIdentifier}, {200}}), report_);
}

TEST_F(ZephlinCLITest, OnlyTheFirstInstanceIsExamined) {
  EXPECT_EQ(restoreWhile({{200}, {ownIdentifier}}), report_ + note_);
}

TEST_F(ZephlinCLITest, AFailureAfterTheWorkDoesNotFollowAReportOfSuccess) {
  lookupFails = true;
  FakeRunner::shared().results = {{0, false, ""}};
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(ZephlinCLI::run("restore"), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "restore failed: std::bad_alloc\n");
}

TEST_F(ZephlinCLITest, StatusDoesNotLookForInstances) {
  runningInstances = {{200}};
  FakeRunner::shared().results = {{0, false, "a k 0\n"}};
  testing::internal::CaptureStdout();
  EXPECT_EQ(ZephlinCLI::run("status"), 0);
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(askedFor, "");
}

TEST_F(ZephlinCLITest, ApplyWritesThenReadsBack) {
  FakeRunner::shared().results = {{0, false, ""}, {0, false, "a k 0\n"}};
  testing::internal::CaptureStdout();
  EXPECT_EQ(ZephlinCLI::run("apply"), 0);
  testing::internal::GetCapturedStdout();
  const auto& calls = FakeRunner::shared().calls;
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[0].executable, "/usr/bin/hidutil");
  EXPECT_EQ(calls[0].arguments[3], "--set");
  EXPECT_EQ(calls[1].executable, "/usr/bin/hidutil");
  EXPECT_EQ(calls[1].arguments[3], "--get");
}

TEST_F(ZephlinCLITest, AFailedWriteIsNotFollowedByAReadBack) {
  FakeRunner::shared().results = {{1, false, "X\n"}};
  testing::internal::CaptureStderr();
  EXPECT_EQ(ZephlinCLI::run("apply"), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "apply failed: hidutil exited with status 1: X\n\n");
  EXPECT_EQ(FakeRunner::shared().calls.size(), 1U);
}

}  // namespace
}  // namespace zephlin
