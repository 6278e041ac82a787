// The override is kept in force while keyboards come, the machine sleeps, and the service restarts.

#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

class Watching : public DesktopTest {
 protected:
  void SetUp() override { app_.waitForStatusLine("On. Every tap registers instantly"); }

  /// Waits for the number of runs that set a property since the time, and returns when they began.
  std::vector<double> waitForApplies(double since, std::size_t count) {
    waitUntil(std::to_string(count) + " applies",
              [&] { return desktop().hidutil().settingSince(since).size() >= count; });
    std::vector<double> times;
    for (const HidutilRun& run : desktop().hidutil().settingSince(since)) {
      times.push_back(run.startedAt - since);
    }
    return times;
  }

  App app_{desktop()};
};

TEST_F(Watching, AKeyboardIsInstantASecondAfterItWasPlugged) {
  const double pluggedAt = monotonicSeconds();
  const std::string plugged = desktop().keyboards().plug();
  EXPECT_FALSE(desktop().keyboards().allAre("0"));
  desktop().keyboards().waitUntilAllAre("0");
  const std::vector<double> applies = waitForApplies(pluggedAt, 1);
  EXPECT_EQ(applies.size(), 1U);
  EXPECT_GE(applies.front(), 1.0);
  desktop().keyboards().pull(plugged);
}

TEST_F(Watching, KeyboardsPluggedTogetherAreOneApply) {
  const double firstAt = monotonicSeconds();
  std::vector<std::string> plugged;
  for (int keyboard = 0; keyboard < 3; ++keyboard) {
    plugged.push_back(desktop().keyboards().plug());
  }
  desktop().keyboards().waitUntilAllAre("0");
  app_.waitForStatusLine("On. Every tap registers instantly");
  EXPECT_EQ(desktop().hidutil().settingSince(firstAt).size(), 1U);
  for (const std::string& keyboard : plugged) {
    desktop().keyboards().pull(keyboard);
  }
}

TEST_F(Watching, AWakeAppliesAfterTwoSecondsAndAgainAfterTen) {
  desktop().logind().prepareForSleep(true);
  const double wokenAt = monotonicSeconds();
  desktop().logind().prepareForSleep(false);
  const std::vector<double> applies = waitForApplies(wokenAt, 2);
  ASSERT_EQ(applies.size(), 2U);
  EXPECT_GE(applies.front(), 2.0);
  EXPECT_LT(applies.front(), 10.0);
  EXPECT_GE(applies.back(), 10.0);
}

TEST_F(Watching, ARestartedServiceGetsTheOverrideAgain) {
  desktop().restartKeyboards();
  desktop().keyboards().waitUntilAllAre("0");
  app_.waitForStatusLine("On. Every tap registers instantly");
}

TEST_F(Watching, NothingIsAppliedWhileItIsOff) {
  app_.item().choose("Instant Caps Lock");
  desktop().keyboards().waitUntilAllAre("-1");
  app_.waitForStatusLine("Off, using your Mac's normal delay");
  const double pluggedAt = monotonicSeconds();
  const std::string plugged = desktop().keyboards().plug();
  desktop().logind().prepareForSleep(true);
  desktop().logind().prepareForSleep(false);
  // Later than any debounced apply would come.
  waitUntil("three seconds to pass", [&] { return monotonicSeconds() > pluggedAt + 3; });
  EXPECT_EQ(desktop().keyboards().delays(), (std::vector<std::string>{"-1", "-1", "(null)"}));
  EXPECT_TRUE(desktop().hidutil().settingSince(pluggedAt).empty());
  desktop().keyboards().pull(plugged);
}

}  // namespace
}  // namespace zephlin::test
