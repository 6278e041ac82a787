#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <ctime>
#include <memory>
#include <optional>

#include "Platform/Linux/Watching/LogindWorkspace.h"
#include "Tests/Support/Daemon.h"
#include "Tests/Support/FakeLogind.h"
#include "Tests/Support/QtLoop.h"

namespace {

/// What the clock below adds to the time that the machine has really slept.
std::atomic<time_t> secondsAsleep = 0;

}  // namespace

/// Replaces the C library's.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
  if (clock == CLOCK_BOOTTIME) {
    time->tv_sec += secondsAsleep;
  }
  return result;
}

namespace zephlin {
namespace {

class LogindWorkspaceTest : public testing::Test {
 protected:
  LogindWorkspaceTest() { letListen(); }

  /// It listens from the event loop's next turn on.
  static void letListen() { test::runLoopFor(std::chrono::milliseconds(1)); }

  bool wakesAre(int count) {
    return test::eventually([&] { return wakes_ >= count; }) && wakes_ == count;
  }

  std::optional<test::MessageBus> bus_{std::in_place, test::systemBusAddress().toStdString()};
  std::optional<LogindWorkspace> workspace_{std::in_place};
  int wakes_ = 0;
  std::unique_ptr<Observation> observation_ = workspace_->observeDidWake([this] { ++wakes_; });
};

TEST_F(LogindWorkspaceTest, ReportsEachWakeAndNoFallingAsleep) {
  test::FakeLogind logind;
  logind.prepareForSleep(true);
  logind.prepareForSleep(false);
  ASSERT_TRUE(wakesAre(1));
  logind.prepareForSleep(true);
  logind.prepareForSleep(false);
  EXPECT_TRUE(wakesAre(2));
}

TEST_F(LogindWorkspaceTest, ReportsToEachObserver) {
  test::FakeLogind logind;
  int others = 0;
  const auto other = workspace_->observeDidWake([&] { ++others; });
  letListen();
  logind.prepareForSleep(false);
  EXPECT_TRUE(wakesAre(1));
  EXPECT_TRUE(test::eventually([&] { return others == 1; }));
}

TEST_F(LogindWorkspaceTest, FollowsLogindThroughARestart) {
  std::optional<test::FakeLogind> logind(std::in_place);
  logind->prepareForSleep(false);
  ASSERT_TRUE(wakesAre(1));
  logind.reset();
  logind.emplace();
  logind->prepareForSleep(false);
  EXPECT_TRUE(wakesAre(2));
}

TEST_F(LogindWorkspaceTest, BelievesOnlyLogind) {
  test::FakeLogind stranger(test::systemBusAddress(), "org.example.Stranger");
  test::FakeLogind logind;
  stranger.prepareForSleep(false);
  test::runLoopFor(std::chrono::milliseconds(100));
  logind.prepareForSleep(false);
  EXPECT_TRUE(wakesAre(1));
}

TEST_F(LogindWorkspaceTest, EndsWithTheObservation) {
  test::FakeLogind logind;
  int others = 0;
  const auto other = workspace_->observeDidWake([&] { ++others; });
  letListen();
  observation_.reset();
  logind.prepareForSleep(false);
  ASSERT_TRUE(test::eventually([&] { return others == 1; }));
  EXPECT_EQ(wakes_, 0);
}

TEST_F(LogindWorkspaceTest, EndsWithinACall) {
  test::FakeLogind logind;
  int calls = 0;
  std::unique_ptr<Observation> ending;
  ending = workspace_->observeDidWake([&] {
    ending.reset();
    ++calls;
  });
  letListen();
  logind.prepareForSleep(false);
  logind.prepareForSleep(false);
  ASSERT_TRUE(wakesAre(2));
  EXPECT_EQ(calls, 1);
}

TEST_F(LogindWorkspaceTest, ReportsASleepThatWasOverBeforeItListened) {
  int calls = 0;
  const auto other = workspace_->observeDidWake([&] { ++calls; });
  secondsAsleep += 1;
  EXPECT_EQ(calls, 0);
  letListen();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(wakes_, 0) << "logind reports it to the one that listens already";
}

TEST_F(LogindWorkspaceTest, ReportsTheWakeFromASleepThatWasAnnouncedBeforeItListened) {
  test::FakeLogind logind;
  int calls = 0;
  logind.prepareForSleep(true);
  const auto other = workspace_->observeDidWake([&] { ++calls; });
  letListen();
  EXPECT_EQ(calls, 0);
  logind.prepareForSleep(false);
  EXPECT_TRUE(test::eventually([&] { return calls == 1; }));
}

TEST_F(LogindWorkspaceTest, MayEndBeforeItListens) {
  auto other = workspace_->observeDidWake([] {});
  other.reset();
  other = workspace_->observeDidWake([] {});
  workspace_.reset();
  letListen();
  EXPECT_EQ(wakes_, 0);
}

TEST_F(LogindWorkspaceTest, OutlivesTheBus) {
  bus_.reset();
  test::runLoopFor(std::chrono::milliseconds(100));
  EXPECT_EQ(wakes_, 0);
}

TEST(LogindWorkspaceWithoutABus, LogsNothing) {
  testing::internal::CaptureStderr();
  LogindWorkspace workspace;
  int wakes = 0;
  const auto observation = workspace.observeDidWake([&] { ++wakes; });
  test::runLoopFor(std::chrono::milliseconds(10));
  EXPECT_NE(observation, nullptr);
  EXPECT_EQ(wakes, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace zephlin
