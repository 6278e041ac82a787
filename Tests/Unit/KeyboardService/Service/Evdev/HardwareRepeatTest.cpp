#include <gtest/gtest.h>

#include <initializer_list>

#include "KeyboardService/Service/Evdev/HardwareRepeat.h"
#include "Tests/Unit/KeyboardService/Service/Evdev/KeyEvents.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using Frame = std::initializer_list<InputEvent>;

constexpr std::int32_t scanCode = 58;
constexpr InputEvent scan{EV_MSC, MSC_SCAN, scanCode};
constexpr InputEvent otherScan{EV_MSC, MSC_SCAN, 30};

class HardwareRepeatTest : public testing::Test {
 protected:
  void take(Frame frame) {
    for (const InputEvent& event : frame) {
      repeat_.take(event);
    }
    repeat_.take(endOfFrame);
  }

  HardwareRepeat repeat_{{7, scanCode}};
};

TEST_F(HardwareRepeatTest, IsBlockedWellBeforeTheFirstRepetition) {
  EXPECT_FALSE(repeat_.isFollowing());
  EXPECT_EQ(repeat_.deadline(), std::nullopt);
  repeat_.follow(1000ms, 1001ms);
  EXPECT_TRUE(repeat_.isFollowing());
  EXPECT_EQ(repeat_.deadline(), 1150ms);
}

TEST_F(HardwareRepeatTest, APressThatIsReadLateIsNotFollowedAsItMayBeOver) {
  repeat_.follow(1000ms, 1011ms);
  EXPECT_FALSE(repeat_.isFollowing());
}

TEST_F(HardwareRepeatTest, TheEarlyReleaseIsNotTheRealOne) {
  repeat_.follow(0ms, 0ms);
  take({capsLock(KeyReleased)});
  EXPECT_TRUE(repeat_.deadline());
}

TEST_F(HardwareRepeatTest, AShortPressEndsWithAScanCodeAlone) {
  repeat_.follow(0ms, 0ms);
  take({capsLock(KeyReleased)});
  take({otherScan});
  EXPECT_TRUE(repeat_.isFollowing());
  take({scan});
  EXPECT_FALSE(repeat_.isFollowing());
  EXPECT_EQ(repeat_.deadline(), std::nullopt);
}

TEST_F(HardwareRepeatTest, AnyScanCodeOfTheKeyWillDo) {
  repeat_.follow(0ms, 0ms);
  take({{EV_MSC, MSC_SCAN, 7}});
  EXPECT_FALSE(repeat_.isFollowing());
}

TEST_F(HardwareRepeatTest, ARealReleaseThatComesBeforeTheEarlyOneEndsItToo) {
  repeat_.follow(0ms, 0ms);
  take({scan, capsLock(KeyReleased)});
  EXPECT_FALSE(repeat_.isFollowing());
}

TEST_F(HardwareRepeatTest, AnotherPressMeansThatTheFirstIsOver) {
  repeat_.follow(0ms, 0ms);
  take({scan, capsLock(KeyPressed)});
  EXPECT_FALSE(repeat_.isFollowing());
}

TEST_F(HardwareRepeatTest, BlockedItIsFollowedUntilTheKernelReportsTheRelease) {
  repeat_.follow(0ms, 0ms);
  repeat_.blocked(true);
  EXPECT_EQ(repeat_.deadline(), std::nullopt);
  take({scan, capsLock(KeyRepeated)});
  take({otherScan});
  EXPECT_TRUE(repeat_.isFollowing());
  take({scan, capsLock(KeyReleased)});
  EXPECT_FALSE(repeat_.isFollowing());
}

TEST_F(HardwareRepeatTest, BlockedItEndsWhenTheKernelResetsTheKeyboard) {
  repeat_.follow(0ms, 0ms);
  repeat_.blocked(true);
  take({capsLock(KeyReleased)});
  EXPECT_FALSE(repeat_.isFollowing());
}

TEST_F(HardwareRepeatTest, AKeyThatCameUpInTheGrabIsFollowedNoMore) {
  repeat_.follow(0ms, 0ms);
  repeat_.blocked(false);
  EXPECT_FALSE(repeat_.isFollowing());
}

class GrabbedMomentTest : public testing::Test {
 protected:
  void take(Frame frame, HardwareRepeat::Time time = 0ms) {
    for (const InputEvent& event : frame) {
      moment_.take(event, time);
    }
    moment_.take(endOfFrame, time);
  }

  void takeOwnPress() { take({capsLock(KeyPressed)}); }

  HardwareRepeat repeat_{{scanCode}};
  GrabbedMoment moment_{repeat_};
};

TEST_F(GrabbedMomentTest, AloneThePressStays) {
  takeOwnPress();
  EXPECT_FALSE(moment_.isUp());
  EXPECT_FALSE(moment_.isPressLeft());
  EXPECT_EQ(moment_.missed(std::nullopt), GrabbedMoment::Events());
}

TEST_F(GrabbedMomentTest, ARealReleaseBeforeThePressLeavesThePressWithoutAnEnd) {
  take({scan});
  takeOwnPress();
  EXPECT_TRUE(moment_.isUp());
  EXPECT_TRUE(moment_.isPressLeft());
}

TEST_F(GrabbedMomentTest, ARealReleaseAfterThePressEndsIt) {
  takeOwnPress();
  take({scan, capsLock(KeyReleased)});
  EXPECT_TRUE(moment_.isUp());
  EXPECT_FALSE(moment_.isPressLeft());
}

TEST_F(GrabbedMomentTest, RepetitionsChangeNothing) {
  takeOwnPress();
  take({scan, capsLock(KeyRepeated)});
  EXPECT_FALSE(moment_.isUp());
}

/// What a program receives of the events that are written, given which keys the kernel takes for
/// held, and what it makes of those.
std::vector<InputEvent> seenByProgram(const GrabbedMoment::Events& written, bool kernelHasDown,
                                      bool programHasDown) {
  std::vector<InputEvent> seen;
  for (const InputEvent& event : written) {
    const bool isDown = event.value == KeyPressed;
    if (event.type != EV_KEY || isDown == std::exchange(kernelHasDown, isDown)) {
      continue;
    }
    if (isDown != std::exchange(programHasDown, isDown)) {
      seen.push_back(event);
    }
  }
  return seen;
}

TEST_F(GrabbedMomentTest, APressThatWasMissedIsSeen) {
  take({otherScan, key(KEY_A, KeyPressed)});
  EXPECT_EQ(seenByProgram(moment_.missed(std::nullopt), true, false),
            (std::vector{key(KEY_A, KeyPressed)}));
}

TEST_F(GrabbedMomentTest, AReleaseThatWasMissedIsSeen) {
  take({otherScan, key(KEY_A, KeyReleased)});
  EXPECT_EQ(seenByProgram(moment_.missed(std::nullopt), false, true),
            (std::vector{key(KEY_A, KeyReleased)}));
}

TEST_F(GrabbedMomentTest, ATapThatWasMissedIsSeen) {
  take({otherScan, key(KEY_A, KeyPressed)});
  take({otherScan, key(KEY_A, KeyReleased)});
  EXPECT_EQ(seenByProgram(moment_.missed(std::nullopt), false, false),
            (std::vector{key(KEY_A, KeyPressed), key(KEY_A, KeyReleased)}));
}

TEST_F(GrabbedMomentTest, WhatProgramsHaveSeenIsNotRepeated) {
  take({otherScan, key(KEY_A, KeyPressed)}, 5ms);
  EXPECT_EQ(moment_.missed(5ms), GrabbedMoment::Events());
  EXPECT_NE(moment_.missed(6ms), GrabbedMoment::Events());
}

TEST_F(GrabbedMomentTest, AMissedPressWhoseReleaseWasSeenIsAWholeTap) {
  take({otherScan, key(KEY_A, KeyPressed)}, 5ms);
  take({otherScan, key(KEY_A, KeyReleased)}, 9ms);
  EXPECT_EQ(seenByProgram(moment_.missed(9ms), false, false),
            (std::vector{key(KEY_A, KeyPressed), key(KEY_A, KeyReleased)}));
}

TEST_F(GrabbedMomentTest, EveryEventIsAFrameOfItsOwn) {
  take({otherScan, key(KEY_A, KeyPressed)});
  take({otherScan, key(KEY_B, KeyPressed)});
  const auto written = moment_.missed(std::nullopt);
  ASSERT_EQ(written.size(), 8U);
  for (std::size_t index = 0; index < written.size(); ++index) {
    EXPECT_EQ(written[index] == endOfFrame, index % 2 == 1) << index;
  }
}

}  // namespace
}  // namespace zephlin
