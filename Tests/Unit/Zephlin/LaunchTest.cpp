#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Tests/Support/Files.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Unit/Zephlin/AppDelegateFixture.h"
#include "Zephlin/StartApplication.h"

namespace zephlin {
namespace {

using Launch = AppDelegateTest;
using test::contentOf;

TEST_F(Launch, ConstructionStartsTheUpdaterAndNothingElse) {
  const auto delegate = std::make_shared<AppDelegate>(desktop_);
  desktop_.runFor(60);
  EXPECT_EQ(desktop_.updaters().started(), 1U);
  EXPECT_EQ(desktop_.systemStatusBar().items().size(), 0U);
  EXPECT_EQ(desktop_.hidutil().calls().size(), 0U);
  EXPECT_EQ(desktop_.dispatch().liveTimers().size(), 0U);
}

TEST_F(Launch, RunningTheApplicationSetsItUpAsAnAccessoryWithItsMenu) {
  desktop_.after(1, [this] { desktop_.pressKeyEquivalent("q"); });
  EXPECT_EQ(runApplication(desktop_), 0);
  EXPECT_TRUE(desktop_.application().isAccessory());
  EXPECT_NE(desktop_.application().mainMenu(), nullptr);
  EXPECT_TRUE(desktop_.application().hasTerminated());
  EXPECT_EQ(applies(), 1U);
}

TEST_F(Launch, ASecondStartHandsOverAndDoesNothingElse) {
  desktop_.application().anotherInstanceRuns = true;
  EXPECT_EQ(runApplication(desktop_), 0);
  EXPECT_EQ(desktop_.updaters().started(), 0U);
  EXPECT_EQ(desktop_.systemStatusBar().items().size(), 0U);
  EXPECT_EQ(applies(), 0U);
}

TEST_F(Launch, APreviewHandsOverToARunningInstanceToo) {
  desktop_.application().anotherInstanceRuns = true;
  desktop_.processInfo().environment["ZEPHLIN_PREVIEW"] = "taptest";
  EXPECT_EQ(runApplication(desktop_), 0);
  EXPECT_EQ(desktop_.systemStatusBar().items().size(), 0U);
  EXPECT_EQ(applies(), 0U);
}

TEST_F(Launch, StartingTheApplicationOnceMoreShowsTheTapTest) {
  launchAndSettle();
  desktop_.application().reopen();
  ASSERT_NE(delegate_->tapTest().window(), nullptr);
  EXPECT_EQ(desktop_.systemStatusBar().items().size(), 1U);
}

TEST_F(Launch, WithThePreferenceOnTheOverrideIsApplied) {
  launchAndSettle();
  EXPECT_TRUE(desktop_.keyboards().allHave(0));
  EXPECT_EQ(desktop_.hidDevices().appearedObservers(), 1U);
  EXPECT_EQ(desktop_.workspace().wakeObservers(), 1U);
}

TEST_F(Launch, WithThePreferenceOffTheStatusIsRead) {
  launchSwitchedOff();
  EXPECT_EQ(desktop_.hidutil().gets(), 1U);
  EXPECT_EQ(applies() + restores(), 0U);
  EXPECT_EQ(delegate_->statusDescription(), "Off, using your Mac's normal delay");
  EXPECT_EQ(delegate_->cachedStatus(), (CapsLockEngine::Status{0, 1, 0}));
}

TEST_F(Launch, APluggedKeyboardIsInstantAboutASecondLater) {
  launchAndSettle();
  const double plugged = desktop_.now();
  desktop_.plugKeyboard();
  desktop_.runFor(1.0 + engineCallTime);
  EXPECT_TRUE(desktop_.keyboards().allHave(0));
  ASSERT_EQ(applies(), 2U);
  EXPECT_NEAR(timesOfSets(0)[1], plugged + 1.0, 1e-6);
  EXPECT_EQ(toolTip(), "Zephlin: instant Caps Lock is ON");
}

TEST_F(Launch, ThePreviewShowsTheTapTestAndGoesOnRunning) {
  desktop_.processInfo().environment["ZEPHLIN_PREVIEW"] = "taptest";
  launch();
  desktop_.runFor(60);
  EXPECT_TRUE(desktop_.windows().window()->isShown);
  EXPECT_FALSE(desktop_.application().hasTerminated());
  EXPECT_EQ(applies(), 1U) << "all else is as usual";
}

TEST_F(Launch, AnOutputPathAloneDoesNothing) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("preview.png");
  for (const char* mode : {"", "TAPTEST", "taptest ", "window"}) {
    SimulatedDesktop desktop;
    if (*mode != '\0') {
      desktop.processInfo().environment["ZEPHLIN_PREVIEW"] = mode;
    }
    desktop.processInfo().environment["ZEPHLIN_PREVIEW_OUT"] = path;
    const auto delegate = std::make_shared<AppDelegate>(desktop);
    desktop.application().setDelegate(delegate);
    desktop.application().launch();
    desktop.runFor(10);
    EXPECT_EQ(desktop.windows().made(), 0U);
    EXPECT_FALSE(desktop.application().hasTerminated());
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Launch, TheSnapshotIsWrittenAndTheApplicationEndsOneSecondAfterLaunch) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("preview.png");
  std::ofstream(path) << std::string(100000, 'x');
  desktop_.processInfo().environment = {{"ZEPHLIN_PREVIEW", "taptest"},
                                        {"ZEPHLIN_PREVIEW_OUT", path}};
  launch();
  desktop_.runUntil(1.0 - oneTick);
  EXPECT_FALSE(desktop_.application().hasTerminated());
  desktop_.runUntil(1.0);
  EXPECT_TRUE(desktop_.application().hasTerminated());
  EXPECT_TRUE(contentOf(path).starts_with("\x89PNG")) << "in place of what was there";
  EXPECT_LT(contentOf(path).size(), 100000U);
}

TEST_F(Launch, APreviewThatCannotBeWrittenEndsAllTheSame) {
  desktop_.processInfo().environment = {{"ZEPHLIN_PREVIEW", "taptest"},
                                        {"ZEPHLIN_PREVIEW_OUT", "/nonexistent/preview.png"}};
  launch();
  desktop_.runFor(1.0);
  EXPECT_TRUE(desktop_.application().hasTerminated());
  EXPECT_TRUE(logged().empty());
}

TEST_F(Launch, APreviewToAPipeWithoutAReaderEndsAllTheSame) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("preview.png");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  desktop_.processInfo().environment = {{"ZEPHLIN_PREVIEW", "taptest"},
                                        {"ZEPHLIN_PREVIEW_OUT", path}};
  launch();
  ::alarm(60);  // Ends a test that hangs.
  desktop_.runFor(1.0);
  ::alarm(0);
  EXPECT_TRUE(desktop_.application().hasTerminated());
}

TEST_F(Launch, APreviewThatCannotBeDrawnWritesNothingAndEnds) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("preview.png");
  desktop_.windows().setDrawable(false);
  desktop_.processInfo().environment = {{"ZEPHLIN_PREVIEW", "taptest"},
                                        {"ZEPHLIN_PREVIEW_OUT", path}};
  launch();
  desktop_.runFor(1.0);
  EXPECT_TRUE(desktop_.application().hasTerminated());
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Launch, ASnapshotThatFallsDueAfterTheDelegateDoesNothing) {
  desktop_.processInfo().environment = {{"ZEPHLIN_PREVIEW", "taptest"},
                                        {"ZEPHLIN_PREVIEW_OUT", "/nonexistent/preview.png"}};
  launch();
  delegate_.reset();
  desktop_.runFor(10);
  EXPECT_FALSE(desktop_.application().hasTerminated());
}

TEST_F(Launch, OutsideABundleNoLoginItemIsRegistered) {
  desktop_.processInfo().bundlePath = "/usr/bin";
  launchAndSettle();
  EXPECT_EQ(desktop_.loginService().registrations(), 0U);
  EXPECT_FALSE(storage_->contains("didSetupLoginItem"));
}

TEST_F(Launch, TheFirstLaunchRegistersTheLoginItemOnce) {
  launchAndSettle();
  EXPECT_EQ(desktop_.loginService().registrations(), 1U);
  EXPECT_EQ(storage_->boolean("didSetupLoginItem"), true);
  SimulatedDesktop next(storage_);
  const auto delegate = std::make_shared<AppDelegate>(next);
  next.application().setDelegate(delegate);
  next.application().launch();
  EXPECT_EQ(next.loginService().registrations(), 0U);
}

TEST_F(Launch, ARegistrationThatFailsIsLoggedAndTriedAtTheNextLaunch) {
  desktop_.loginService().failWith("not today");
  launchAndSettle();
  EXPECT_EQ(logged(),
            std::vector<std::string>{"Zephlin: could not register login item: not today"});
  EXPECT_FALSE(storage_->contains("didSetupLoginItem"));
  SimulatedDesktop next(storage_);
  const auto delegate = std::make_shared<AppDelegate>(next);
  next.application().setDelegate(delegate);
  next.application().launch();
  EXPECT_EQ(next.loginService().registrations(), 1U);
  EXPECT_EQ(storage_->boolean("didSetupLoginItem"), true);
}

TEST_F(Launch, QuittingLeavesTheOverrideAsItIs) {
  launchAndSettle();
  openMenuAndClick("Quit Zephlin");
  EXPECT_TRUE(desktop_.application().hasTerminated());
  delegate_.reset();
  desktop_.runFor(60);
  EXPECT_TRUE(desktop_.keyboards().allHave(0));
  EXPECT_EQ(restores(), 0U);
}

}  // namespace
}  // namespace zephlin
