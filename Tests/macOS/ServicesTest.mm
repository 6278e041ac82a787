#include <algorithm>
#include <cstdlib>

#include "StandIns/Actions.h"
#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "Support/Mac.h"
#import "Support/StandInMac.h"
#include "Support/Throwing.h"

namespace zephlin::test {
namespace {

class ServicesTest : public MacTest {
 protected:
  UserDefaults& defaults() { return platform().standardUserDefaults(); }
  LoginService& login() { return platform().loginService(); }
};

TEST_F(ServicesTest, ATextOrANumberIsNoBoolean) {
  NSUserDefaults* const stored = [NSUserDefaults standardUserDefaults];
  [stored setObject:@"NO" forKey:@"instantCapsLockEnabled"];
  EXPECT_EQ(defaults().boolean("instantCapsLockEnabled"), std::nullopt);
  [stored setInteger:0 forKey:@"instantCapsLockEnabled"];
  EXPECT_EQ(defaults().boolean("instantCapsLockEnabled"), std::nullopt);
}

TEST_F(ServicesTest, ATruthIsWhatUserDefaultsTakeForOne) {
  NSUserDefaults* const stored = [NSUserDefaults standardUserDefaults];
  [stored setInteger:1 forKey:@"didSetupLoginItem"];
  EXPECT_TRUE(defaults().boolForKey("didSetupLoginItem"));
  [stored setObject:@"YES" forKey:@"didSetupLoginItem"];
  EXPECT_TRUE(defaults().boolForKey("didSetupLoginItem"));
  [stored setInteger:0 forKey:@"didSetupLoginItem"];
  EXPECT_FALSE(defaults().boolForKey("didSetupLoginItem"));
}

TEST_F(ServicesTest, ADoubleSettingIsStoredAsANumber) {
  defaults().setDouble("lastApplyDate", 1234.5);
  EXPECT_EQ([[NSUserDefaults standardUserDefaults] doubleForKey:@"lastApplyDate"], 1234.5);
  EXPECT_EQ(defaults().boolean("lastApplyDate"), std::nullopt);
}

TEST_F(ServicesTest, TheLogTakesATextAsItIs) {
  platform().systemLog()->log("100 % of “Zephlin” %@ %s");
  EXPECT_EQ(logLines(), Calls{"100 % of “Zephlin” %@ %s"});
}

TEST_F(ServicesTest, TheClockCountsFrom1970) {
  const double before = platform().clock().now().time_since_epoch().count();
  EXPECT_GT(before, 1.7e9);
  standins::advance(2.5);
  EXPECT_NEAR(platform().clock().now().time_since_epoch().count(), before + 2.5, 1e-6);
}

TEST_F(ServicesTest, TheProcessKnowsItsEnvironmentAndItsBundle) {
  EXPECT_EQ(platform().processInfo().environmentVariable("HOME"), std::getenv("HOME"));
  EXPECT_EQ(platform().processInfo().environmentVariable("NO_SUCH_VARIABLE"), std::nullopt);
  standins::knobs().mainBundlePath = "/Applications/Zephlin.app";
  EXPECT_EQ(platform().processInfo().mainBundlePath(), "/Applications/Zephlin.app");
}

TEST_F(ServicesTest, RunningApplicationsAreThoseWithTheIdentifierInTheirOrder) {
  standins::knobs().runningApplications = {
      {"com.quorvenel.zephlin", 40}, {"com.example.other", 41}, {"com.quorvenel.zephlin", 42}};
  const auto found = runningApplicationsWithBundleIdentifier("com.quorvenel.zephlin");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].processIdentifier, 40);
  EXPECT_EQ(found[1].processIdentifier, 42);
  EXPECT_TRUE(runningApplicationsWithBundleIdentifier("com.example.none").empty());
  EXPECT_EQ(currentProcessIdentifier(), [[NSProcessInfo processInfo] processIdentifier]);
}

TEST_F(ServicesTest, WakingIsObservedAtTheWorkspacesCentreUntilTheObservationGoes) {
  int wakes = 0;
  auto observation = platform().workspace().observeDidWake([&] { ++wakes; });
  EXPECT_EQ(standins::calls({"NSWorkspace"}),
            Calls{"NSWorkspace addObserverForName:NSWorkspaceDidWakeNotification object:any "
                  "queue:main"});
  wakeFromSleep();
  EXPECT_EQ(wakes, 1);
  [[NSNotificationCenter defaultCenter] postNotificationName:NSWorkspaceDidWakeNotification
                                                      object:nil];
  EXPECT_EQ(wakes, 1) << "the default centre is another one";
  observation.reset();
  wakeFromSleep();
  EXPECT_EQ(wakes, 1);
}

TEST_F(ServicesTest, TheFourStatesOfTheLoginItemAreToldApart) {
  for (const auto status : {LoginServiceStatus::NotRegistered, LoginServiceStatus::Enabled,
                            LoginServiceStatus::RequiresApproval, LoginServiceStatus::NotFound}) {
    standins::knobs().loginStatus = static_cast<int>(status);
    EXPECT_EQ(login().status(), status);
  }
  EXPECT_EQ(standins::calls({"SMAppService status"}).size(), 4U) << "it is asked each time";
}

TEST_F(ServicesTest, RegisteringAndUnregisteringGoToTheMainApplicationsService) {
  login().registerMainApp();
  EXPECT_EQ(login().status(), LoginServiceStatus::Enabled);
  login().unregisterMainApp();
  EXPECT_EQ(login().status(), LoginServiceStatus::NotRegistered);
  login().openSystemSettingsLoginItems();
  EXPECT_EQ(
      standins::calls({"SMAppService"}),
      (Calls{"SMAppService mainAppService", "SMAppService register", "SMAppService mainAppService",
             "SMAppService status", "SMAppService mainAppService", "SMAppService unregister",
             "SMAppService mainAppService", "SMAppService status",
             "SMAppService openSystemSettingsLoginItems"}));
}

TEST_F(ServicesTest, AFailureOfTheLoginServiceIsThrownAsItIs) {
  standins::knobs().loginError = "Operation not permitted";
  EXPECT_EQ(thrownBy([this] { login().registerMainApp(); }), "Operation not permitted");
  EXPECT_EQ(thrownBy([this] { login().unregisterMainApp(); }), "Operation not permitted");
  EXPECT_EQ(nativeErrorOf([this] { login().registerMainApp(); }), "SMAppServiceErrorDomain 1");
  EXPECT_EQ(nativeErrorOf([this] { login().unregisterMainApp(); }), "SMAppServiceErrorDomain 1");
}

TEST_F(ServicesTest, SparkleIsLoadedFromTheBundleAndStartedAtOnce) {
  standins::knobs().mainBundlePath = "/Applications/Zephlin.app";
  standins::knobs().bundleHasSparkle = true;
  auto updater = platform().makeStartedUpdater();
  EXPECT_EQ(standins::calls({"NSBundle", "SPU"}),
            (Calls{"NSBundle bundleWithPath:/Applications/Zephlin.app/Contents/Frameworks/"
                   "Sparkle.framework",
                   "SPUStandardUpdaterController init(starting 1, delegates none)"}));
  updater->checkForUpdates();
  EXPECT_EQ(standins::calls({"SPU"}).back(), "SPUStandardUpdaterController checkForUpdates:");
  updater.reset();
  EXPECT_FALSE(standins::liveObjects().contains("SPUStandardUpdaterController"));
}

TEST_F(ServicesTest, WithoutSparkleCheckingForUpdatesSaysThatThereIsNoUpdater) {
  Calls texts;
  mac::whenModal([&texts] {
    texts = labelTexts([[NSApp modalWindow] contentView]);
    clickInModalWindow("OK");
  });
  platform().makeStartedUpdater()->checkForUpdates();
  EXPECT_NE(std::find(texts.begin(), texts.end(), "Zephlin does not look for updates"),
            texts.end());
  EXPECT_EQ(
      standins::calls({"NSApplication", "NSAlert", "SPU"}),
      (Calls{"NSApplication activateIgnoringOtherApps:1", "NSAlert runModal(style 1, 1 buttons)"}));
}

}  // namespace
}  // namespace zephlin::test
