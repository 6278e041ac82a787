#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Tests/Unit/TapTest/TapTestFixture.h"

namespace zephlin {
namespace {

using TapMonitor = TapTestFixture;
using Log = std::vector<std::string>;

constexpr const char* tapFailure =
    "Zephlin: could not create flagsChanged event tap, falling back to polling";

TEST_F(TapMonitor, ConstructionOpensNoChannel) {
  expectChannels(0, 0, 0);
}

TEST_F(TapMonitor, ShowOpensThePressChannelAndTheEventTap) {
  show();
  expectChannels(1, 1, 0);
  EXPECT_EQ(desktop_.log().entries(), Log{});
}

TEST_F(TapMonitor, WithoutAnEventTapTheStateIsPolledEveryTenMilliseconds) {
  showWithPolling();
  expectChannels(1, 0, 1);
  EXPECT_EQ(desktop_.dispatch().liveTimers().at(0).interval, Seconds(0.01));
  EXPECT_EQ(desktop_.dispatch().liveTimers().at(0).tolerance, Seconds::zero());
  EXPECT_EQ(desktop_.log().entries(), Log{tapFailure});
}

TEST_F(TapMonitor, APressChannelThatDoesNotOpenIsLoggedWithItsCode) {
  desktop_.hidDevices().failOpening(notPermitted);
  show();
  expectChannels(0, 1, 0);
  EXPECT_EQ(desktop_.log().entries(),
            Log{"Zephlin: IOHIDManagerOpen failed (0xe00002e2), press channel disabled"});
}

TEST_F(TapMonitor, ASmallCodeIsLoggedWithoutLeadingZeros) {
  desktop_.hidDevices().failOpening(10);
  show();
  EXPECT_EQ(desktop_.log().entries(),
            Log{"Zephlin: IOHIDManagerOpen failed (0xa), press channel disabled"});
}

TEST_F(TapMonitor, BothFailuresAreLoggedInTheOrderOfTheAttempts) {
  desktop_.hidDevices().failOpening(notPermitted);
  showWithPolling();
  expectChannels(0, 0, 1);
  EXPECT_EQ(
      desktop_.log().entries(),
      (Log{"Zephlin: IOHIDManagerOpen failed (0xe00002e2), press channel disabled", tapFailure}));
}

TEST_F(TapMonitor, ClosingEndsThePressChannelAndTheEventTap) {
  showAndTouchShift();
  close();
  expectChannels(0, 0, 0);
  desktop_.tapCapsLock();
  expectCounts(0, 0);
}

TEST_F(TapMonitor, ClosingEndsPolling) {
  showWithPollingAndWait();
  close();
  expectChannels(0, 0, 0);
  desktop_.tapCapsLock();
  desktop_.runFor(1);
  expectCounts(0, 0);
}

TEST_F(TapMonitor, ClosingLeavesCountsAndLatency) {
  showAndTouchShift();
  desktop_.tapCapsLock();
  close();
  expectCounts(1, 1);
  EXPECT_EQ(controller_->lastLatencyMS(), 0);
}

TEST_F(TapMonitor, StoppingTwiceDoesNothingTheSecondTime) {
  show();
  controller_->windowWillClose();
  controller_->windowWillClose();
  expectChannels(0, 0, 0);
}

TEST_F(TapMonitor, DestructionEndsThePressChannelAndTheEventTap) {
  show();
  controller_.reset();
  expectChannels(0, 0, 0);
  desktop_.tapCapsLock();
}

TEST_F(TapMonitor, NeitherPollingNorTheWindowKeepsTheController) {
  showWithPolling();
  const std::weak_ptr<TapTestController> controller = controller_;
  controller_.reset();
  EXPECT_TRUE(controller.expired());
  expectChannels(0, 0, 0);
  desktop_.runFor(1);
}

TEST_F(TapMonitor, ResetClearsCountsAndLatency) {
  showAndTouchShift();
  desktop_.tapCapsLock();
  ASSERT_EQ(controller_->lastLatencyMS(), 0);
  ASSERT_TRUE(window().pressButton("Reset"));
  expectCounts(0, 0);
  expectWaiting();
  EXPECT_EQ(controller_->lastLatencyMS(), std::nullopt);
  EXPECT_EQ(latency().text(), " ");
}

TEST_F(TapMonitor, ResetForgetsTheLatestPress) {
  showAndTouchShift();
  desktop_.tapCapsLock(false);
  controller_->resetPressed();
  toggle();
  expectCounts(0, 1);
  EXPECT_EQ(controller_->lastLatencyMS(), std::nullopt);
}

TEST_F(TapMonitor, AfterAResetWhileCapsLockIsOnTheNextTapCounts) {
  showAndTouchShift();
  desktop_.tapCapsLock();
  ASSERT_TRUE(desktop_.capsLockKey().isOn());
  controller_->resetPressed();
  desktop_.tapCapsLock();
  EXPECT_FALSE(desktop_.capsLockKey().isOn());
  expectCounts(1, 1);
  expectInstant();
}

TEST_F(TapMonitor, AfterAResetPollingGoesOnFromTheStateThatItSaw) {
  showWithPollingAndWait();
  desktop_.tapCapsLock();
  desktop_.runFor(0.01);
  controller_->resetPressed();
  expectChannels(1, 0, 1);
  desktop_.tapCapsLock();
  desktop_.runFor(0.01);
  expectCounts(1, 1);
}

TEST_F(TapMonitor, ShowingAgainWhileOpenClearsTheCountsAndTheLatestPress) {
  showAndTouchShift();
  desktop_.tapCapsLock();
  show();
  expectCounts(0, 0);
  expectWaiting();
  EXPECT_EQ(latency().text(), " ");
  toggle();
  EXPECT_EQ(controller_->lastLatencyMS(), std::nullopt);
}

TEST_F(TapMonitor, ShowingAgainWhileOpenLeavesOneOfEachChannel) {
  showAndTouchShift();
  show();
  expectChannels(1, 1, 0);
  desktop_.tapCapsLock();
  expectCounts(1, 1);
  close();
  expectChannels(0, 0, 0);
}

TEST_F(TapMonitor, ShowingAgainWhileOpenLeavesOnePollingTimer) {
  showWithPollingAndWait();
  show();
  expectChannels(1, 0, 1);
  desktop_.tapCapsLock();
  desktop_.runFor(0.02);
  expectCounts(1, 1);
  close();
  expectChannels(0, 0, 0);
}

TEST_F(TapMonitor, AnOpeningThatFailsWhenShownAgainLeavesTheFormerPressChannel) {
  show();
  desktop_.hidDevices().failOpening(notPermitted);
  show();
  expectChannels(1, 1, 0);
  EXPECT_EQ(note().textColor().role, ColorRole::TertiaryLabel);
  desktop_.tapCapsLock();
  expectCounts(1, 0);
}

TEST_F(TapMonitor, PollingThatStartsBesideTheTapRemembersItsOwnState) {
  showAndTouchShift();
  showWithPolling();
  expectChannels(1, 1, 1);
  toggle();
  expectCounts(0, 1);
  desktop_.runFor(0.01);
  expectCounts(0, 1);
  toggle();
  expectCounts(0, 2);
  desktop_.runFor(0.01);
  expectCounts(0, 3);
  close();
  expectChannels(0, 0, 0);
}

}  // namespace
}  // namespace zephlin
