#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "Platform/Workspace.h"
#include "Tests/Support/Daemon.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin {
namespace {

using test::TestProcess;

const test::Outcome handedOver{0, "", "handed over\n"};

/// A process that has become the instance.
class Instance : public TestProcess {
 public:
  Instance() : TestProcess({SESSION_PROGRAM, "instance"}) { waitForErrors("instance\n"); }
};

class RunningInstanceTest : public testing::Test {
 protected:
  RunningInstanceTest() {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0700));
    ::setenv("XDG_RUNTIME_DIR", directory_.path().c_str(), 1);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", bus_.address().c_str(), 1);
  }

  static TestProcess start() { return TestProcess({SESSION_PROGRAM, "instance"}); }

  test::TemporaryDirectory directory_;
  test::MessageBus bus_;
};

TEST_F(RunningInstanceTest, TheFirstIsTheInstanceAndTheNextOnesAskItToComeForward) {
  Instance first;
  EXPECT_EQ(start().wait(), handedOver);
  first.waitForErrors("instance\nactivated\n");
  EXPECT_EQ(start().wait(), handedOver);
  first.waitForErrors("instance\nactivated\nactivated\n");
}

TEST_F(RunningInstanceTest, ASecondStartHandsItsActivationTokenOver) {
  Instance first;
  ::setenv("XDG_ACTIVATION_TOKEN", " by token", 1);
  EXPECT_EQ(start().wait(), handedOver);
  ::unsetenv("XDG_ACTIVATION_TOKEN");
  EXPECT_EQ(start().wait(), handedOver);
  first.waitForErrors("instance\nactivated by token\nactivated\n");
}

TEST_F(RunningInstanceTest, ASecondStartHandsItsActionOver) {
  Instance first;
  ::setenv("XDG_ACTIVATION_TOKEN", " by token", 1);
  TestProcess second({SESSION_PROGRAM, "instance", " for tap-test"});
  EXPECT_EQ(second.wait(), handedOver);
  ::unsetenv("XDG_ACTIVATION_TOKEN");
  first.waitForErrors("instance\nactivated for tap-test by token\n");
}

TEST_F(RunningInstanceTest, TheCommandLineToolSeesTheInstance) {
  Instance first;
  const auto running = runningApplicationsWithBundleIdentifier("com.quorvenel.zephlin");
  ASSERT_EQ(running.size(), 1U);
  EXPECT_EQ(running.front().processIdentifier, first.id());
}

TEST_F(RunningInstanceTest, AKilledInstanceIsFollowedByTheNextStart) {
  Instance();
  Instance();
}

TEST_F(RunningInstanceTest, OfTwoStartedAtOnceOneBecomesTheInstanceAndIsAskedByTheOther) {
  for (int round = 0; round < 10; ++round) {
    TestProcess one = start();
    TestProcess other = start();
    one.waitForErrors("\n");
    other.waitForErrors("\n");
    const auto running = runningApplicationsWithBundleIdentifier("com.quorvenel.zephlin");
    ASSERT_EQ(running.size(), 1U);
    const bool isOne = running.front().processIdentifier == one.id();
    EXPECT_EQ((isOne ? other : one).wait(), handedOver);
    (isOne ? one : other).waitForErrors("instance\nactivated\n");
  }
}

TEST_F(RunningInstanceTest, AnInstanceThatCannotBeAskedIsNamed) {
  ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
  Instance first;
  EXPECT_EQ(start().wait(), (test::Outcome{0, "",
                                           "Zephlin: already running with PID " +
                                               std::to_string(first.id()) + "\nhanded over\n"}));
}

TEST_F(RunningInstanceTest, TheLockDecidesAndNotTheNameOnTheBus) {
  TestProcess stranger({SESSION_PROGRAM, "stranger"});
  stranger.waitForErrors("stranger\n");
  Instance first;
  TestProcess second = start();
  ::usleep(300000);  // Enough for a message to the stranger, if one were sent.
  stranger.send(SIGTERM);
  EXPECT_EQ(second.wait(), handedOver);
  first.waitForErrors("activated\n");
}

TEST_F(RunningInstanceTest, WithoutARuntimeDirectoryEveryStartIsAnInstance) {
  ::setenv("XDG_RUNTIME_DIR", "/dev/null", 1);
  const std::string errors =
      "Zephlin: a second start will not be noticed: cannot lock "
      "/dev/null/com.quorvenel.zephlin.lock: Not a directory\ninstance\n";
  TestProcess first = start();
  first.waitForErrors(errors);
  start().waitForErrors(errors);
}

TEST_F(RunningInstanceTest, APipeInPlaceOfTheLockFileIsNotLocked) {
  const std::string path = directory_.file("com.quorvenel.zephlin.lock");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  start().waitForErrors("Zephlin: a second start will not be noticed: cannot lock " + path +
                        ": Invalid argument\ninstance\n");
}

TEST_F(RunningInstanceTest, OtherCallsOfTheInterfaceDoNoHarm) {
  Instance first;
  EXPECT_EQ(test::run({SESSION_PROGRAM, "caller"}).errors,
            "answered\nanswered\nanswered\nrefused\n");
  EXPECT_EQ(start().wait().errors, "handed over\n");
  first.waitForErrors(
      "instance\nactivated\nactivated by startup id\nactivated for an action\nactivated\n");
}

}  // namespace
}  // namespace zephlin
