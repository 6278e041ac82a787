#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>

#include "Tests/Unit/KeyboardWatcher/OpenMenu.h"
#include "Tests/Unit/TapTest/TapTestFixture.h"

namespace zephlin {
namespace {

// What the tap test counts, how it measures a tap's latency, and what it makes of both.
using TapCounts = TapTestFixture;

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

TEST_F(TapCounts, AKeyDownIsAPressAndAKeyUpIsNot) {
  show();
  desktop_.pressCapsLock(false);
  expectCounts(1, 0);
  desktop_.releaseCapsLock();
  expectCounts(1, 0);
}

TEST_F(TapCounts, TheFirstEventOfTheTapSetsTheBaselineWithoutACount) {
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

TEST_F(TapCounts, AnotherModifierSetsTheBaselineSoThatTheFirstTapCounts) {
  showAndTouchShift();
  expectCounts(0, 0);
  desktop_.tapCapsLock();
  expectCounts(1, 1);
}

TEST_F(TapCounts, OtherModifiersCountNothing) {
  toggle();
  showAndTouchShift();
  touchShift();
  desktop_.pressModifier(modifierCommand | modifierShift);
  expectCounts(0, 0);
}

TEST_F(TapCounts, BothDirectionsOfChangeCount) {
  showAndTouchShift();
  toggle();
  expectCounts(0, 1);
  toggle();
  expectCounts(0, 2);
}

TEST_F(TapCounts, TheFirstPollSetsTheBaselineSoThatTheFirstTapCounts) {
  toggle();
  showWithPollingAndWait();
  expectCounts(0, 0);
  desktop_.tapCapsLock();
  desktop_.runFor(0.01);
  expectCounts(1, 1);
  expectInstant();
}

TEST_F(TapCounts, TheFirstPollComesAfterTenMillisecondsAndNoTickEarlier) {
  showWithPolling();
  desktop_.loop().runUntil(ticksFromSeconds(0.01) - 1);
  toggle();
  desktop_.runUntil(0.1);
  expectCounts(0, 0);
}

TEST_F(TapCounts, TheFirstPollComesAfterTenMillisecondsAndNoTickLater) {
  showWithPollingAndWait();
  toggle();
  desktop_.runUntil(0.1);
  expectCounts(0, 1);
}

TEST_F(TapCounts, APolledToggleCountsAtTheNextPollAndOnce) {
  showWithPollingAndWait();
  toggle();
  desktop_.loop().runUntil(ticksFromSeconds(0.02) - 1);
  expectCounts(0, 0);
  desktop_.loop().runUntil(ticksFromSeconds(0.02));
  expectCounts(0, 1);
  desktop_.loop().runUntil(ticksFromSeconds(0.03) + 1);
  expectCounts(0, 1);
}

TEST_F(TapCounts, TwoChangesBetweenTwoPollsAreSeenAsNone) {
  showWithPollingAndWait();
  toggle();
  toggle();
  desktop_.runFor(1);
  expectCounts(0, 0);
}

TEST_F(TapCounts, ClosingForgetsTheStateThatTheTapSaw) {
  showAndTouchShift();
  close();
  show();
  toggle();
  expectCounts(0, 0);
}

TEST_F(TapCounts, ClosingForgetsTheStateThatWasPolled) {
  showWithPollingAndWait();
  close();
  toggle();
  show();
  desktop_.runFor(1);
  expectCounts(0, 0);
}

TEST_F(TapCounts, AnOpenMenuHoldsPressesAndTheTapBack) {
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

TEST_F(TapCounts, AnOpenMenuDoesNotHoldPollingBack) {
  showWithPollingAndWait();
  const OpenMenu menu(desktop_);
  ASSERT_TRUE(menu.isOpen());
  desktop_.tapCapsLock();
  desktop_.runFor(0.01);
  expectCounts(0, 1);
}

TEST_F(TapCounts, ACountOfPressesThatOverflowsAbortsTheProcess) {
  show();
  pressCountOf(*controller_) = std::numeric_limits<std::int64_t>::max() - 1;
  desktop_.tapCapsLock();
  EXPECT_EQ(controller_->pressCount(), std::numeric_limits<std::int64_t>::max());
  EXPECT_DEATH(desktop_.tapCapsLock(), "Zephlin: fatal: a count overflowed");
}

TEST_F(TapCounts, ACountOfTogglesThatOverflowsAbortsTheProcess) {
  showAndTouchShift();
  toggleCountOf(*controller_) = std::numeric_limits<std::int64_t>::max() - 1;
  toggle();
  EXPECT_EQ(controller_->toggleCount(), std::numeric_limits<std::int64_t>::max());
  EXPECT_DEATH(toggle(), "Zephlin: fatal: a count overflowed");
}

TEST_F(TapCounts, BeforeAnyTapTheLatencyIsASpace) {
  show();
  EXPECT_EQ(controller_->lastLatencyMS(), std::nullopt);
  EXPECT_EQ(latency().text(), " ");
}

TEST_F(TapCounts, AToggleWithoutAPressHasNoLatency) {
  showAndTouchShift();
  toggle();
  expectCounts(0, 1);
  EXPECT_EQ(controller_->lastLatencyMS(), std::nullopt);
  EXPECT_EQ(latency().text(), " ");
}

struct LatencyCase {
  const char* name;
  /// From the press to the toggle.
  VirtualTicks delay;
  std::int64_t milliseconds;
};

void PrintTo(const LatencyCase& latency, std::ostream* out) {
  *out << latency.name;
}

class TapLatencyTest : public TapCounts, public testing::WithParamInterface<LatencyCase> {};

TEST_P(TapLatencyTest, IsThatOfThePressOrStaysAsItWas) {
  showAndTouchShift();
  desktop_.capsLockKey().setLatency(0.012);
  desktop_.tapCapsLock();
  desktop_.runFor(1);
  EXPECT_EQ(controller_->lastLatencyMS(), 12);
  desktop_.setWallTime(WallTime(Seconds(0)));
  desktop_.capsLockKey().setLatency(secondsFromTicks(GetParam().delay));
  desktop_.tapCapsLock();
  desktop_.runFor(2);
  expectCounts(2, 2);
  EXPECT_EQ(controller_->lastLatencyMS(), GetParam().milliseconds);
  EXPECT_EQ(latency().text(),
            "Last tap registered in " + std::to_string(GetParam().milliseconds) + " ms");
}

constexpr VirtualTicks microseconds = 1000;

INSTANTIATE_TEST_SUITE_P(
    , TapLatencyTest,
    testing::Values(LatencyCase{"ZeroIfTheToggleComesWithThePress", 0, 0},
                    LatencyCase{"RoundedDownBelowAHalf", 62'499 * microseconds, 62},
                    LatencyCase{"RoundedUpAtAHalf", 62'500 * microseconds, 63},
                    LatencyCase{"RoundedUpToAThousand", 999'500 * microseconds, 1000},
                    LatencyCase{"ATickBelowAThousand", virtualTicksPerSecond - 1, 1000},
                    LatencyCase{"AThousandDoesNotCount", virtualTicksPerSecond, 12},
                    LatencyCase{"ATickAboveAThousandDoesNotCount", virtualTicksPerSecond + 1, 12}),
    [](const auto& latency) { return std::string(latency.param.name); });

TEST_F(TapCounts, TheLatencyIsTakenAnewFromTheSamePressAtEachToggle) {
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

TEST_F(TapCounts, TheLatencyIsTakenFromTheLatestPress) {
  showAndTouchShift();
  desktop_.tapCapsLock(false);
  desktop_.runFor(0.4);
  desktop_.tapCapsLock(false);
  desktop_.runFor(0.03);
  toggle();
  EXPECT_EQ(controller_->lastLatencyMS(), 30);
}

TEST_F(TapCounts, TheLatencyOfAPolledToggleLastsUntilThePollThatSeesIt) {
  showWithPollingAndWait();
  desktop_.runUntil(0.0125);
  desktop_.tapCapsLock();
  desktop_.runUntil(0.02);
  EXPECT_EQ(controller_->lastLatencyMS(), 8);
}

TEST_F(TapCounts, TheLatencyStaysAsItWasWhenTheWallClockJumpsAhead) {
  showAndTouchShift();
  desktop_.tapCapsLock(false);
  desktop_.clock().jump(3600);
  toggle();
  expectCounts(1, 1);
  EXPECT_EQ(controller_->lastLatencyMS(), std::nullopt);
}

TEST_F(TapCounts, TheLatencyIsNegativeAndRoundedAwayFromZeroWhenTheWallClockJumpsBack) {
  showAndTouchShift();
  desktop_.tapCapsLock(false);
  desktop_.clock().jump(-0.0625);
  toggle();
  EXPECT_EQ(controller_->lastLatencyMS(), -63);
  EXPECT_EQ(latency().text(), "Last tap registered in -63 ms");
}

TEST_F(TapCounts, AStateThatWasFoundIsNoToggle) {
  show();
  desktop_.eventTaps().findFlags(modifierCapsLock);
  expectCounts(0, 0);
  desktop_.tapCapsLock();
  expectCounts(1, 1);
  desktop_.eventTaps().findFlags(modifierCapsLock);
  expectCounts(1, 1);
  desktop_.tapCapsLock();
  expectCounts(2, 2);
}

TEST_F(TapCounts, WithoutAPressTheVerdictWaits) {
  show();
  expectWaiting();
}

TEST_F(TapCounts, OneTapThatRegistersIsInstant) {
  showAndTouchShift();
  desktop_.capsLockKey().setLatency(0.012);
  desktop_.tapCapsLock();
  desktop_.runFor(0.1);
  expectCounts(1, 1);
  expectInstant();
  EXPECT_EQ(latency().text(), "Last tap registered in 12 ms");
}

TEST_F(TapCounts, TwoPressesAndOneToggleMissOneTap) {
  showAndTouchShift();
  desktop_.tapCapsLock();
  desktop_.tapCapsLock(false);
  expectCounts(2, 1);
  expectMissing("1 tap went missing. The delay is on");
}

TEST_F(TapCounts, FivePressesAndTwoTogglesMissThreeTaps) {
  showAndTouchShift();
  for (const bool registers : {true, false, false, true, false}) {
    desktop_.tapCapsLock(registers);
  }
  expectCounts(5, 2);
  expectMissing("3 taps went missing. The delay is on");
}

TEST_F(TapCounts, MoreTogglesThanPressesAreInstant) {
  showAndTouchShift();
  desktop_.tapCapsLock();
  toggle();
  expectCounts(1, 2);
  expectInstant();
}

TEST_F(TapCounts, WithThePressChannelClosedTheVerdictWaitsWhileTogglesCount) {
  desktop_.hidDevices().failOpening(notPermitted);
  showAndTouchShift();
  desktop_.tapCapsLock();
  desktop_.tapCapsLock();
  expectCounts(0, 2);
  expectWaiting();
}

TEST_F(TapCounts, WithThePressChannelOpenTheNotePromisesToWatchOneKey) {
  show();
  EXPECT_EQ(note().text(), "Zephlin only watches the Caps Lock key here, nothing else you type.");
  EXPECT_EQ(note().textColor(), (Color{ColorRole::TertiaryLabel, 1}));
}

TEST_F(TapCounts, WithThePressChannelClosedTheNoteAsksForPermission) {
  desktop_.hidDevices().failOpening(notPermitted);
  show();
  EXPECT_EQ(note().text(),
            "To count taps, allow Zephlin under System Settings \u203A Privacy & Security \u203A "
            "Input Monitoring.");
  EXPECT_EQ(note().textColor(), (Color{ColorRole::SystemOrange, 1}));
}

TEST_F(TapCounts, PermissionTakesEffectOnceTheWindowIsOpenedAgain) {
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

}  // namespace
}  // namespace zephlin
