#include "Tests/Unit/Zephlin/AppDelegateFixture.h"

namespace zephlin {
namespace {

using OverrideController = AppDelegateTest;
using Status = CapsLockEngine::Status;

constexpr const char* on = "On. Every tap registers instantly";
constexpr const char* off = "Off, using your Mac's normal delay";
constexpr const char* failedToTurnOn = "Couldn't turn on. Check Input Monitoring permission";
constexpr const char* unconfirmed = "Couldn't confirm. Try Re-apply Now";

TEST_F(OverrideController, WithoutAStoredPreferenceItIsOn) {
  launchAndSettle();
  EXPECT_TRUE(delegate_->isEnabled());
  EXPECT_EQ(applies(), 1U);
}

TEST_F(OverrideController, AStoredValueThatIsNoBooleanReadsAsOn) {
  storage_->set("instantCapsLockEnabled", std::string("no"));
  launchAndSettle();
  EXPECT_TRUE(delegate_->isEnabled());
  storage_->set("instantCapsLockEnabled", 0.0);
  EXPECT_TRUE(delegate_->isEnabled());
}

TEST_F(OverrideController, ASuccessfulApplyIsRecorded) {
  launchAndSettle();
  EXPECT_EQ(delegate_->cachedStatus(), (Status{1, 0, 0}));
  EXPECT_FALSE(delegate_->lastApplyFailed());
  EXPECT_EQ(delegate_->retryAttempts(), 0);
  EXPECT_EQ(delegate_->statusDescription(), on);
  EXPECT_EQ(storage_->boolean("lastApplyOK"), true);
  EXPECT_DOUBLE_EQ(*storage_->number("lastApplyDate"),
                   desktop_.wallTime().time_since_epoch().count() - aMoment + engineCallTime);
}

TEST_F(OverrideController, EngineCallsRunOneAtATimeOffTheMainThread) {
  launch();
  delegate_->applyIfEnabled(false);
  delegate_->refreshStatusAsync({});
  delegate_->setEnabled(false);
  desktop_.runFor(1);
  EXPECT_EQ(desktop_.hidutil().calls().size(), 7U);
  EXPECT_EQ(desktop_.hidutil().callsOnMainThread(), 0U);
  EXPECT_EQ(desktop_.hidutil().overlappingCalls(), 0U);
}

TEST_F(OverrideController, TheWorkQueueHasItsLabel) {
  launch();
  const auto queues = desktop_.dispatch().liveSerialQueues();
  ASSERT_EQ(queues.size(), 1U);
  EXPECT_EQ(queues[0], "com.quorvenel.zephlin.engine");
}

TEST_F(OverrideController, SwitchingOffWhileAnApplyRunsDropsItsResult) {
  launch();
  desktop_.runFor(0.01);  // The set is under way.
  delegate_->setEnabled(false);
  desktop_.runFor(engineCallTime - 0.01);
  EXPECT_EQ(delegate_->cachedStatus(), std::nullopt) << "the result of the apply";
  EXPECT_FALSE(storage_->contains("lastApplyOK"));
  desktop_.runFor(1);
  EXPECT_EQ(delegate_->statusDescription(), off);
  EXPECT_EQ(restores(), 1U);
  EXPECT_TRUE(desktop_.keyboards().allHave(-1));
  EXPECT_EQ(storage_->boolean("lastApplyOK"), true);
}

TEST_F(OverrideController, OnOffOnSettlesOnTheLastChoice) {
  launchAndSettle();
  for (const bool enabled : {false, true, false, true}) {
    delegate_->setEnabled(enabled);
  }
  desktop_.runFor(20);
  EXPECT_TRUE(desktop_.keyboards().allHave(0));
  EXPECT_EQ(delegate_->statusDescription(), on);
  for (const bool enabled : {false, true, false}) {
    delegate_->setEnabled(enabled);
  }
  desktop_.runFor(20);
  EXPECT_TRUE(desktop_.keyboards().allHave(-1));
  EXPECT_EQ(delegate_->statusDescription(), off);
}

TEST_F(OverrideController, AStatusThatCannotBeReadIsTriedFourTimesThreeSecondsApart) {
  desktop_.hidutil().failGets(HidutilFault::Exit{1, "no"});
  launch();
  desktop_.runFor(100);
  const double period = engineCallTime + 3.0;
  const std::vector<double> times = timesOfSets(0);
  ASSERT_EQ(times.size(), 4U);
  for (std::size_t attempt = 0; attempt < times.size(); ++attempt) {
    EXPECT_NEAR(times[attempt], static_cast<double>(attempt) * period, 1e-6);
  }
  EXPECT_EQ(storage_->boolean("lastApplyOK"), false);
  EXPECT_EQ(delegate_->statusDescription(), "Checking…");
  EXPECT_TRUE(logged().empty()) << "a failed read is not logged";
}

TEST_F(OverrideController, ARetryComesThreeSecondsAfterTheResultAndNotATickBefore) {
  desktop_.hidutil().failGets(HidutilFault::Exit{}, 1);
  launch();
  desktop_.runUntil(engineCallTime);
  ASSERT_EQ(delegate_->retryAttempts(), 1);
  desktop_.runUntil(engineCallTime + 3.0 - oneTick);
  EXPECT_EQ(applies(), 1U);
  desktop_.runUntil(engineCallTime + 3.0);
  EXPECT_EQ(applies(), 2U);
  desktop_.runFor(60);
  EXPECT_EQ(applies(), 2U) << "the second one was confirmed";
  EXPECT_EQ(delegate_->retryAttempts(), 1) << "a confirmed result does not reset the count";
}

TEST_F(OverrideController, AnApplyThatThrowsIsLoggedAndShown) {
  desktop_.hidutil().failSets(HidutilFault::Exit{3, "X\n"});
  launch();
  desktop_.runFor(60);
  EXPECT_EQ(logged(),
            std::vector<std::string>(
                4, "Zephlin: failed to apply override: hidutil exited with status 3: X\n"));
  EXPECT_TRUE(delegate_->lastApplyFailed());
  EXPECT_EQ(delegate_->statusDescription(), failedToTurnOn);
  EXPECT_EQ(storage_->boolean("lastApplyOK"), false);
  EXPECT_EQ(delegate_->cachedStatus(), (Status{0, 1, 0})) << "read although the apply threw";
}

TEST_F(OverrideController, AThrownApplyWithAConfirmingStatusIsNotRetried) {
  launchAndSettle();
  desktop_.hidutil().failSets(HidutilFault::Exit{1, "X"});
  delegate_->applyIfEnabled(false);
  desktop_.runFor(60);
  EXPECT_EQ(applies(), 2U);
  EXPECT_EQ(delegate_->retryAttempts(), 0);
  EXPECT_EQ(storage_->boolean("lastApplyOK"), false);
  EXPECT_EQ(delegate_->statusDescription(), failedToTurnOn);
}

TEST_F(OverrideController, AToolThatHangsIsReportedAfterItsTimeLimit) {
  desktop_.hidutil().failSets(HidutilFault::Hang{}, 1);
  launch();
  desktop_.runFor(10.1);
  EXPECT_EQ(logged(),
            std::vector<std::string>{
                "Zephlin: failed to apply override: hidutil did not finish within 10 seconds"});
  desktop_.runFor(10);
  EXPECT_EQ(delegate_->statusDescription(), on);
}

TEST_F(OverrideController, AToolThatCannotBeStartedIsReportedByThePlatformsText) {
  desktop_.hidutil().failSets(HidutilFault::LaunchFailure{}, 1);
  launchAndSettle();
  ASSERT_EQ(logged().size(), 1U);
  EXPECT_TRUE(logged()[0].starts_with("Zephlin: failed to apply override: ")) << logged()[0];
  EXPECT_NE(logged()[0].find("No such file or directory"), std::string::npos) << logged()[0];
}

TEST_F(OverrideController, WithoutKeyboardsTheOverrideIsNeverConfirmed) {
  desktop_.keyboards().removeAll();
  launch();
  desktop_.runFor(60);
  EXPECT_EQ(applies(), 4U);
  EXPECT_EQ(delegate_->statusDescription(), unconfirmed);
}

TEST_F(OverrideController, AKeyboardThatDoesNotTakeTheOverrideLeavesItTurningOn) {
  desktop_.plugKeyboard(true);
  launch();
  for (int second = 0; second < 60; ++second) {
    desktop_.runFor(1);
    EXPECT_EQ(delegate_->statusDescription(), "Turning on…");
  }
  EXPECT_EQ(applies(), 4U);
}

TEST_F(OverrideController, AKeyboardWithAnotherDelayLeavesItTurningOn) {
  desktop_.plugKeyboard(true);
  desktop_.keyboards().at(desktop_.keyboards().all().rbegin()->first).value = 10;
  launchAndSettle();
  EXPECT_EQ(delegate_->cachedStatus(), (Status{1, 0, 1}));
  EXPECT_EQ(delegate_->statusDescription(), "Turning on…");
}

TEST_F(OverrideController, EveryRequestFromOutsideBeginsTheCountAnew) {
  desktop_.hidutil().failGets(HidutilFault::Exit{});
  launch();
  const auto expectAnew = [this](const char* what, const std::function<void()>& request) {
    desktop_.runFor(60);
    ASSERT_EQ(delegate_->retryAttempts(), 3) << "before " << what;
    request();
    EXPECT_EQ(delegate_->retryAttempts(), 0) << what;
  };
  expectAnew("Re-apply Now", [this] { openMenuAndClick("Re-apply Now"); });
  expectAnew("a switch", [this] { delegate_->setEnabled(true); });
  expectAnew("a wake", [this] {
    desktop_.sleepAndWake(60);
    desktop_.runFor(2);
  });
  expectAnew("a keyboard", [this] {
    desktop_.plugKeyboard();
    desktop_.runFor(1);
  });
}

TEST_F(OverrideController, ARequestWhileItIsOffLeavesTheCount) {
  desktop_.hidutil().failGets(HidutilFault::Exit{});
  launchAndSettle();
  delegate_->setEnabled(false);
  delegate_->applyIfEnabled(false);
  EXPECT_EQ(delegate_->retryAttempts(), 1);
}

TEST_F(OverrideController, ReapplyNowResetsTheCountAndThePendingRetryFiresAsARetry) {
  desktop_.hidutil().failGets(HidutilFault::Exit{});
  launch();
  desktop_.runUntil(1);
  ASSERT_EQ(delegate_->retryAttempts(), 1);
  delegate_->applyIfEnabled(false);
  EXPECT_EQ(delegate_->retryAttempts(), 0);
  desktop_.runUntil(1 + engineCallTime);
  EXPECT_EQ(delegate_->retryAttempts(), 1);
  desktop_.runUntil(engineCallTime + 3.0 + engineCallTime);
  EXPECT_EQ(applies(), 3U) << "the retry that was pending";
  EXPECT_EQ(delegate_->retryAttempts(), 2) << "which did not reset the count";
}

TEST_F(OverrideController, ARestoreEndsTheFailureOfAnApplyAndIsRecordedAndShown) {
  desktop_.hidutil().failSets(HidutilFault::Exit{}, 1);
  launchAndSettle();
  ASSERT_TRUE(delegate_->lastApplyFailed());
  delegate_->setEnabled(false);
  const auto redraws = desktop_.systemStatusBar().item().imageSettings;
  desktop_.runFor(engineCallTime);
  EXPECT_FALSE(delegate_->lastApplyFailed());
  EXPECT_EQ(storage_->boolean("lastApplyOK"), true);
  EXPECT_DOUBLE_EQ(*storage_->number("lastApplyDate"),
                   desktop_.wallTime().time_since_epoch().count());
  EXPECT_EQ(desktop_.systemStatusBar().item().imageSettings, redraws + 1);
}

TEST_F(OverrideController, ARestoreWhoseStatusCannotBeReadCountsAsDone) {
  launchAndSettle();
  desktop_.hidutil().failGets(HidutilFault::Exit{});
  delegate_->setEnabled(false);
  desktop_.runFor(60);
  EXPECT_EQ(storage_->boolean("lastApplyOK"), true);
  EXPECT_EQ(restores(), 1U) << "a restore is never retried";
}

TEST_F(OverrideController, ARestoreThatLeavesAKeyboardInstantIsNotDone) {
  launchAndSettle();
  desktop_.keyboards().at(desktop_.keyboards().all().begin()->first).isStubborn = true;
  delegate_->setEnabled(false);
  desktop_.runFor(60);
  EXPECT_EQ(storage_->boolean("lastApplyOK"), false);
  EXPECT_FALSE(delegate_->lastApplyFailed());
  EXPECT_EQ(restores(), 1U);
}

TEST_F(OverrideController, ARestoreThatThrowsIsLogged) {
  launchAndSettle();
  desktop_.hidutil().failSets(HidutilFault::Exit{1, "X"});
  delegate_->setEnabled(false);
  desktop_.runFor(60);
  EXPECT_EQ(logged(), std::vector<std::string>{
                          "Zephlin: failed to restore default: hidutil exited with status 1: X"});
  EXPECT_TRUE(delegate_->lastApplyFailed());
  EXPECT_EQ(storage_->boolean("lastApplyOK"), false);
  EXPECT_EQ(delegate_->statusDescription(), off) << "the preference wins";
}

TEST_F(OverrideController, ARestoreThatThrowsIsNotDoneEvenWhereNoKeyboardIsInstant) {
  launchAndSettle();
  desktop_.keyboards().setAll(75);
  desktop_.hidutil().failSets(HidutilFault::Exit{});
  delegate_->setEnabled(false);
  desktop_.runFor(aMoment);
  EXPECT_EQ(delegate_->cachedStatus(), (Status{0, 1, 0}));
  EXPECT_EQ(storage_->boolean("lastApplyOK"), false);
}

TEST_F(OverrideController, ApplyingWithThePreferenceOffChangesNothing) {
  launchSwitchedOff();
  const auto calls = desktop_.hidutil().calls().size();
  const auto redraws = desktop_.systemStatusBar().item().imageSettings;
  const auto status = delegate_->cachedStatus();
  delegate_->applyIfEnabled(false);
  delegate_->applyIfEnabled(true);
  desktop_.runFor(60);
  EXPECT_EQ(desktop_.hidutil().calls().size(), calls);
  EXPECT_EQ(desktop_.systemStatusBar().item().imageSettings, redraws);
  EXPECT_EQ(delegate_->cachedStatus(), status);
}

TEST_F(OverrideController, ARetryThatFiresAfterSwitchingOffDoesNothing) {
  desktop_.hidutil().failGets(HidutilFault::Exit{}, 1);
  launch();
  desktop_.runUntil(1);
  ASSERT_EQ(delegate_->retryAttempts(), 1);
  delegate_->setEnabled(false);
  desktop_.runFor(60);
  EXPECT_EQ(applies(), 1U);
  EXPECT_TRUE(desktop_.keyboards().allHave(-1));
}

TEST_F(OverrideController, ThePreferenceIsShownBeforeAnyEngineCall) {
  launchAndSettle();
  const auto calls = desktop_.hidutil().calls().size();
  delegate_->setEnabled(false);
  EXPECT_EQ(desktop_.hidutil().calls().size(), calls);
  EXPECT_EQ(symbol(), "capslock");
  EXPECT_EQ(storage_->boolean("instantCapsLockEnabled"), false);
}

TEST_F(OverrideController, ARefreshReadsTheStatusAndNothingElse) {
  launchAndSettle();
  desktop_.keyboards().at(desktop_.keyboards().all().begin()->first).value = 10;
  const auto writes = storage_->writes;
  bool completed = false;
  delegate_->refreshStatusAsync([this, &completed] {
    completed = true;
    EXPECT_EQ(delegate_->cachedStatus(), (Status{0, 0, 1})) << "called after the redraw";
  });
  desktop_.runFor(statusReadTime);
  EXPECT_TRUE(completed);
  EXPECT_EQ(storage_->writes, writes);
  EXPECT_EQ(applies(), 1U);
  EXPECT_EQ(delegate_->statusDescription(), unconfirmed);
}

TEST_F(OverrideController, ARefreshThatFailsForgetsTheStatus) {
  launchAndSettle();
  desktop_.hidutil().failGets(HidutilFault::Exit{}, 1);
  delegate_->refreshStatusAsync({});
  desktop_.runFor(aMoment);
  EXPECT_EQ(delegate_->cachedStatus(), std::nullopt);
  EXPECT_FALSE(delegate_->lastApplyFailed());
  EXPECT_EQ(delegate_->statusDescription(), "Checking…");
}

TEST_F(OverrideController, QueuedWorkFindsTheDelegateGone) {
  launchAndSettle();
  bool completed = false;
  delegate_->applyIfEnabled(false);
  delegate_->refreshStatusAsync([&completed] { completed = true; });
  delegate_->setEnabled(false);
  delegate_.reset();
  desktop_.runFor(400);
  EXPECT_EQ(desktop_.hidutil().calls().size(), 2U) << "those of the launch";
  EXPECT_FALSE(completed);
}

TEST_F(OverrideController, AResultThatArrivesAfterTheDelegateChangesNothing) {
  launch();
  desktop_.runFor(0.01);
  delegate_.reset();
  desktop_.runFor(400);
  EXPECT_FALSE(storage_->contains("lastApplyOK"));
  EXPECT_EQ(applies(), 1U);
}

TEST_F(OverrideController, APendingRetryFindsTheDelegateGone) {
  desktop_.hidutil().failGets(HidutilFault::Exit{});
  launchAndSettle();
  ASSERT_EQ(delegate_->retryAttempts(), 1);
  delegate_.reset();
  desktop_.runFor(60);
  EXPECT_EQ(applies(), 1U);
}

}  // namespace
}  // namespace zephlin
