#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Tests/Unit/KeyboardWatcher/OpenMenu.h"
#include "Tests/Unit/TapTest/TapTestFixture.h"

namespace zephlin {
namespace {

using TapMonitor = TapTestFixture;
using Log = std::vector<std::string>;

constexpr auto notPermitted = static_cast<std::int32_t>(0xE00002E2);
constexpr const char* tapFailure =
    "Zephlin: could not create flagsChanged event tap, falling back to polling";

// Nobody taps so often that a count overflows. The tests may set the counts because access is not
// checked where a template is instantiated explicitly.
std::int64_t& pressCountOf(TapTestController& controller);
std::int64_t& toggleCountOf(TapTestController& controller);

template <auto Presses, auto Toggles>
struct CountAccess {
  friend std::int64_t& pressCountOf(TapTestController& controller) { return controller.*Presses; }
  friend std::int64_t& toggleCountOf(TapTestController& controller) { return controller.*Toggles; }
};
template struct CountAccess<&TapTestController::pressCount_, &TapTestController::toggleCount_>;

// Channels.

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

// Counting.

TEST_F(TapMonitor, AKeyDownIsAPressAndAKeyUpIsNot) {
  show();
  desktop_.pressCapsLock(false);
  expectCounts(1, 0);
  desktop_.releaseCapsLock();
  expectCounts(1, 0);
}

TEST_F(TapMonitor, TheFirstEventOfTheTapSetsTheBaselineWithoutACount) {
  show();
  desktop_.tapCapsLock();
  expectCounts(1, 0);
  expectMissing("1 tap went missing. The delay is on");
  desktop_.tapCapsLock();
  expectCounts(2, 1);
  expectMissing("1 tap went missing. The delay is on");
  ASSERT_TRUE(window().pressButton("Reset"));
  desktop_.tapCapsLock();
  expectCounts(1, 1);
  expectInstant();
}

TEST_F(TapMonitor, AnotherModifierSetsTheBaselineSoThatTheFirstTapCounts) {
  showAndTouchShift();
  expectCounts(0, 0);
  desktop_.tapCapsLock();
  expectCounts(1, 1);
}

TEST_F(TapMonitor, OtherModifiersCountNothing) {
  toggle();
  showAndTouchShift();
  touchShift();
  desktop_.pressModifier(modifierCommand | modifierShift);
  expectCounts(0, 0);
}

TEST_F(TapMonitor, BothDirectionsOfChangeCount) {
  showAndTouchShift();
  toggle();
  expectCounts(0, 1);
  toggle();
  expectCounts(0, 2);
}

TEST_F(TapMonitor, TheFirstPollSetsTheBaselineSoThatTheFirstTapCounts) {
  toggle();
  showWithPollingAndWait();
  expectCounts(0, 0);
  desktop_.tapCapsLock();
  desktop_.runFor(0.01);
  expectCounts(1, 1);
  expectInstant();
}

TEST_F(TapMonitor, TheFirstPollComesAfterTenMillisecondsAndNoTickEarlier) {
  showWithPolling();
  desktop_.loop().runUntil(ticksFromSeconds(0.01) - 1);
  toggle();
  desktop_.runUntil(0.1);
  expectCounts(0, 0);
}

TEST_F(TapMonitor, TheFirstPollComesAfterTenMillisecondsAndNoTickLater) {
  showWithPollingAndWait();
  toggle();
  desktop_.runUntil(0.1);
  expectCounts(0, 1);
}

TEST_F(TapMonitor, APolledToggleCountsAtTheNextPollAndOnce) {
  showWithPollingAndWait();
  toggle();
  desktop_.loop().runUntil(ticksFromSeconds(0.02) - 1);
  expectCounts(0, 0);
  desktop_.loop().runUntil(ticksFromSeconds(0.02));
  expectCounts(0, 1);
  desktop_.loop().runUntil(ticksFromSeconds(0.03) + 1);
  expectCounts(0, 1);
}

TEST_F(TapMonitor, TwoChangesBetweenTwoPollsAreSeenAsNone) {
  showWithPollingAndWait();
  toggle();
  toggle();
  desktop_.runFor(1);
  expectCounts(0, 0);
}

TEST_F(TapMonitor, ClosingForgetsTheStateThatTheTapSaw) {
  showAndTouchShift();
  close();
  show();
  toggle();
  expectCounts(0, 0);
}

TEST_F(TapMonitor, ClosingForgetsTheStateThatWasPolled) {
  showWithPollingAndWait();
  close();
  toggle();
  show();
  desktop_.runFor(1);
  expectCounts(0, 0);
}

TEST_F(TapMonitor, AnOpenMenuHoldsPressesAndTheTapBack) {
  showAndTouchShift();
  {
    const OpenMenu menu(desktop_);
    ASSERT_TRUE(menu.isOpen());
    desktop_.tapCapsLock();
    expectCounts(0, 0);
  }
  expectCounts(0, 0);
  touchShift();
  expectCounts(0, 1);
}

TEST_F(TapMonitor, AnOpenMenuDoesNotHoldPollingBack) {
  showWithPollingAndWait();
  const OpenMenu menu(desktop_);
  ASSERT_TRUE(menu.isOpen());
  desktop_.tapCapsLock();
  desktop_.runFor(0.01);
  expectCounts(0, 1);
}

// Latency.

TEST_F(TapMonitor, BeforeAnyTapTheLatencyIsASpace) {
  show();
  EXPECT_EQ(controller_->lastLatencyMS(), std::nullopt);
  EXPECT_EQ(latency().text(), " ");
}

TEST_F(TapMonitor, AToggleWithoutAPressHasNoLatency) {
  showAndTouchShift();
  toggle();
  expectCounts(0, 1);
  EXPECT_EQ(controller_->lastLatencyMS(), std::nullopt);
  EXPECT_EQ(latency().text(), " ");
}

/// The latency of a toggle that comes so long after its press, after one of 12 ms.
class TapLatency : public TapTestFixture {
 protected:
  std::optional<std::int64_t> latencyOf(VirtualTicks delay) {
    showAndTouchShift();
    desktop_.capsLockKey().setLatency(0.012);
    desktop_.tapCapsLock();
    desktop_.runFor(1);
    EXPECT_EQ(controller_->lastLatencyMS(), 12);
    desktop_.setWallTime(WallTime(Seconds(0)));
    desktop_.capsLockKey().setLatency(secondsFromTicks(delay));
    desktop_.tapCapsLock();
    desktop_.runFor(2);
    expectCounts(2, 2);
    EXPECT_EQ(latency().text(), "Last tap registered in " +
                                    std::to_string(controller_->lastLatencyMS().value_or(-1)) +
                                    " ms");
    return controller_->lastLatencyMS();
  }
  static constexpr VirtualTicks microseconds = 1000;
};

TEST_F(TapLatency, IsZeroWhereTheToggleComesWithThePress) {
  EXPECT_EQ(latencyOf(0), 0);
}

TEST_F(TapLatency, IsRoundedDownBelowAHalf) {
  EXPECT_EQ(latencyOf(62'499 * microseconds), 62);
}

TEST_F(TapLatency, IsRoundedUpAtAHalf) {
  EXPECT_EQ(latencyOf(62'500 * microseconds), 63);
}

TEST_F(TapLatency, Of999AndAHalfMillisecondsIsAThousand) {
  EXPECT_EQ(latencyOf(999'500 * microseconds), 1000);
}

TEST_F(TapLatency, OneTickBelowAThousandMillisecondsCounts) {
  EXPECT_EQ(latencyOf(virtualTicksPerSecond - 1), 1000);
}

TEST_F(TapLatency, OfAThousandMillisecondsStaysAsItWas) {
  EXPECT_EQ(latencyOf(virtualTicksPerSecond), 12);
}

TEST_F(TapLatency, OneTickAboveAThousandMillisecondsStaysAsItWas) {
  EXPECT_EQ(latencyOf(virtualTicksPerSecond + 1), 12);
}

TEST_F(TapLatency, IsTakenAnewFromTheSamePressAtEachToggle) {
  showAndTouchShift();
  desktop_.tapCapsLock(false);
  desktop_.runFor(0.1);
  toggle();
  EXPECT_EQ(controller_->lastLatencyMS(), 100);
  desktop_.runFor(0.15);
  toggle();
  EXPECT_EQ(controller_->lastLatencyMS(), 250);
  desktop_.runFor(0.75);
  toggle();
  EXPECT_EQ(controller_->lastLatencyMS(), 250);
}

TEST_F(TapLatency, IsTakenFromTheLatestPress) {
  showAndTouchShift();
  desktop_.tapCapsLock(false);
  desktop_.runFor(0.4);
  desktop_.tapCapsLock(false);
  desktop_.runFor(0.03);
  toggle();
  EXPECT_EQ(controller_->lastLatencyMS(), 30);
}

TEST_F(TapLatency, OfAPolledToggleLastsUntilThePollThatSeesIt) {
  showWithPollingAndWait();
  desktop_.runUntil(0.0125);
  desktop_.tapCapsLock();
  desktop_.runUntil(0.02);
  EXPECT_EQ(controller_->lastLatencyMS(), 8);
}

TEST_F(TapLatency, StaysAsItWasWhenTheWallClockJumpsAhead) {
  showAndTouchShift();
  desktop_.tapCapsLock(false);
  desktop_.clock().jump(3600);
  toggle();
  expectCounts(1, 1);
  EXPECT_EQ(controller_->lastLatencyMS(), std::nullopt);
}

TEST_F(TapLatency, IsNegativeAndRoundedAwayFromZeroWhenTheWallClockJumpsBack) {
  showAndTouchShift();
  desktop_.tapCapsLock(false);
  desktop_.clock().jump(-0.0625);
  toggle();
  EXPECT_EQ(controller_->lastLatencyMS(), -63);
  EXPECT_EQ(latency().text(), "Last tap registered in -63 ms");
}

// Verdict and note.

TEST_F(TapMonitor, WithoutAPressTheVerdictWaits) {
  show();
  expectWaiting();
}

TEST_F(TapMonitor, OneTapThatRegistersIsInstant) {
  showAndTouchShift();
  desktop_.capsLockKey().setLatency(0.012);
  desktop_.tapCapsLock();
  desktop_.runFor(0.1);
  expectCounts(1, 1);
  expectInstant();
  EXPECT_EQ(latency().text(), "Last tap registered in 12 ms");
}

TEST_F(TapMonitor, TwoPressesAndOneToggleMissOneTap) {
  showAndTouchShift();
  desktop_.tapCapsLock();
  desktop_.tapCapsLock(false);
  expectCounts(2, 1);
  expectMissing("1 tap went missing. The delay is on");
}

TEST_F(TapMonitor, FivePressesAndTwoTogglesMissThreeTaps) {
  showAndTouchShift();
  for (const bool registers : {true, false, false, true, false}) {
    desktop_.tapCapsLock(registers);
  }
  expectCounts(5, 2);
  expectMissing("3 taps went missing. The delay is on");
}

TEST_F(TapMonitor, MoreTogglesThanPressesAreInstant) {
  showAndTouchShift();
  desktop_.tapCapsLock();
  toggle();
  expectCounts(1, 2);
  expectInstant();
}

TEST_F(TapMonitor, WithThePressChannelClosedTheVerdictWaitsWhileTogglesCount) {
  desktop_.hidDevices().failOpening(notPermitted);
  showAndTouchShift();
  desktop_.tapCapsLock();
  desktop_.tapCapsLock();
  expectCounts(0, 2);
  expectWaiting();
}

TEST_F(TapMonitor, WithThePressChannelOpenTheNotePromisesToWatchOneKey) {
  show();
  EXPECT_EQ(note().text(), "Zephlin only watches the Caps Lock key here, nothing else you type.");
  EXPECT_EQ(note().textColor(), (Color{ColorRole::TertiaryLabel, 1}));
}

TEST_F(TapMonitor, WithThePressChannelClosedTheNoteAsksForPermission) {
  desktop_.hidDevices().failOpening(notPermitted);
  show();
  EXPECT_EQ(note().text(),
            "To count taps, allow Zephlin under System Settings \u203A Privacy & Security \u203A "
            "Input Monitoring.");
  EXPECT_EQ(note().textColor(), (Color{ColorRole::SystemOrange, 1}));
}

TEST_F(TapMonitor, PermissionTakesEffectOnceTheWindowIsOpenedAgain) {
  desktop_.hidDevices().failOpening(notPermitted);
  show();
  desktop_.hidDevices().failOpening(std::nullopt);
  desktop_.tapCapsLock();
  desktop_.runFor(60);
  EXPECT_EQ(note().textColor().role, ColorRole::SystemOrange);
  expectCounts(0, 0);
  close();
  show();
  EXPECT_EQ(note().textColor().role, ColorRole::TertiaryLabel);
  desktop_.tapCapsLock();
  expectCounts(1, 0);
}

// Reset.

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

// A second show while the window is open.

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

TEST_F(TapMonitor, ACountOfPressesThatOverflowsAbortsTheProcess) {
  show();
  pressCountOf(*controller_) = std::numeric_limits<std::int64_t>::max() - 1;
  desktop_.tapCapsLock();
  EXPECT_EQ(controller_->pressCount(), std::numeric_limits<std::int64_t>::max());
  EXPECT_DEATH(desktop_.tapCapsLock(), "Zephlin: fatal: a count overflowed");
}

TEST_F(TapMonitor, ACountOfTogglesThatOverflowsAbortsTheProcess) {
  showAndTouchShift();
  toggleCountOf(*controller_) = std::numeric_limits<std::int64_t>::max() - 1;
  toggle();
  EXPECT_EQ(controller_->toggleCount(), std::numeric_limits<std::int64_t>::max());
  EXPECT_DEATH(toggle(), "Zephlin: fatal: a count overflowed");
}

}  // namespace
}  // namespace zephlin
