#include "Tests/Unit/Zephlin/AppDelegateFixture.h"

namespace zephlin {
namespace {

using StatusItemMenu = AppDelegateTest;

// The entries of the menu, when on and when off, are in Tests/Contract/Golden.

TEST_F(StatusItemMenu, TheMenuIsEmptyUntilItOpens) {
  launch();
  EXPECT_TRUE(menuTitles().empty());
  EXPECT_FALSE(desktop_.systemStatusBar().item().menu->autoenablesItems);
}

TEST_F(StatusItemMenu, TheSymbolIsATemplateWithADescription) {
  launchAndSettle();
  EXPECT_EQ(desktop_.systemStatusBar().item().image,
            (SymbolImage{"capslock.fill", "Zephlin", true}));
}

TEST_F(StatusItemMenu, SwitchedOffItShowsThePlainSymbolWhateverFailed) {
  launchAndSettle();
  desktop_.hidutil().failSets(HidutilFault::Exit{});
  delegate_->setEnabled(false);
  desktop_.runFor(aMoment);
  ASSERT_TRUE(delegate_->lastApplyFailed());
  EXPECT_EQ(symbol(), "capslock");
  EXPECT_EQ(toolTip(), "Zephlin: disabled (Apple default delay)");
}

TEST_F(StatusItemMenu, AFailedApplyShowsTheWarning) {
  desktop_.hidutil().failSets(HidutilFault::Exit{});
  launchAndSettle();
  EXPECT_EQ(symbol(), "exclamationmark.triangle");
  EXPECT_EQ(
      toolTip(),
      "Zephlin: enabled, but the fix could not be applied. Check Input Monitoring permission.");
}

TEST_F(StatusItemMenu, AnApplyThatOnlyCouldNotBeVerifiedShowsNoWarning) {
  desktop_.hidutil().failGets(HidutilFault::Exit{});
  launchAndSettle();
  EXPECT_EQ(symbol(), "capslock.fill");
  EXPECT_EQ(toolTip(), "Zephlin: instant Caps Lock is ON");
}

TEST_F(StatusItemMenu, ASymbolThatIsMissingClearsTheImageAndKeepsTheToolTip) {
  launchAndSettle();
  desktop_.systemStatusBar().removeSymbol("capslock");
  delegate_->setEnabled(false);
  EXPECT_EQ(symbol(), "none");
  EXPECT_EQ(toolTip(), "Zephlin: disabled (Apple default delay)");
}

TEST_F(StatusItemMenu, WithoutAButtonNothingIsRedrawn) {
  desktop_.systemStatusBar().setButtonsAvailable(false);
  launchAndSettle();
  ASSERT_TRUE(desktop_.openMenu());
  delegate_->setEnabled(false);
  EXPECT_EQ(desktop_.systemStatusBar().item().imageSettings, 0U);
  EXPECT_EQ(desktop_.systemStatusBar().statusLine(), "On. Every tap registers instantly")
      << "the status line is left alone too";
}

TEST_F(StatusItemMenu, InABundleStartAtLoginIsEnabledAndCheckedAfterTheFirstLaunch) {
  launchAndSettle();
  desktop_.openMenu();
  EXPECT_TRUE(menuItem("Start at Login")->isEnabled);
  EXPECT_TRUE(menuItem("Start at Login")->isChecked);
}

TEST_F(StatusItemMenu, OutsideABundleStartAtLoginIsDisabled) {
  desktop_.processInfo().bundlePath = "/opt/Zephlin.APP";
  desktop_.loginService().setStatus(LoginServiceStatus::Enabled);
  launchAndSettle();
  desktop_.openMenu();
  EXPECT_FALSE(menuItem("Start at Login")->isEnabled);
  EXPECT_FALSE(menuItem("Start at Login")->isChecked) << "outside a bundle it never is";
}

TEST_F(StatusItemMenu, TheStatusLineOfAnOpenMenuFollowsTheRefresh) {
  launchAndSettle();
  desktop_.keyboards().at(desktop_.keyboards().all().begin()->first).value = 75;
  desktop_.openMenu();
  const auto line = desktop_.systemStatusBar().menuItems()[1];
  const std::size_t changes = desktop_.systemStatusBar().item().menuTitleChanges;
  EXPECT_EQ(line->title, "On. Every tap registers instantly") << "the cached one at first";
  desktop_.runFor(statusReadTime);
  EXPECT_EQ(line->title, "Couldn't confirm. Try Re-apply Now");
  EXPECT_EQ(desktop_.systemStatusBar().item().menuTitleChanges, changes + 1);
  EXPECT_TRUE(desktop_.systemStatusBar().isMenuOpen());
}

TEST_F(StatusItemMenu, ARefreshAfterClosingRewritesTheLastMenu) {
  launchAndSettle();
  desktop_.keyboards().at(desktop_.keyboards().all().begin()->first).value = 75;
  desktop_.openMenu();
  desktop_.closeMenu();
  desktop_.runFor(statusReadTime);
  EXPECT_EQ(desktop_.systemStatusBar().statusLine(), "Couldn't confirm. Try Re-apply Now");
}

TEST_F(StatusItemMenu, AnItemOfAnEarlierMenuIsNotWrittenTo) {
  launchAndSettle();
  desktop_.openMenu();
  const std::weak_ptr<MenuItem> earlier = desktop_.systemStatusBar().menuItems()[1];
  desktop_.closeMenu();
  desktop_.openMenu();
  EXPECT_TRUE(earlier.expired());
}

TEST_F(StatusItemMenu, TheSwitchTogglesThePreference) {
  launchAndSettle();
  openMenuAndClick("Instant Caps Lock");
  desktop_.runFor(aMoment);
  EXPECT_FALSE(delegate_->isEnabled());
  EXPECT_TRUE(desktop_.keyboards().allHave(-1));
  openMenuAndClick("Instant Caps Lock");
  desktop_.runFor(aMoment);
  EXPECT_TRUE(delegate_->isEnabled());
  EXPECT_TRUE(desktop_.keyboards().allHave(0));
}

TEST_F(StatusItemMenu, StartAtLoginTogglesTheLoginItem) {
  launchAndSettle();
  openMenuAndClick("Start at Login");
  EXPECT_EQ(desktop_.loginService().unregistrations(), 1U);
  openMenuAndClick("Start at Login");
  EXPECT_EQ(desktop_.loginService().registrations(), 2U);
  EXPECT_EQ(desktop_.loginService().settingsOpenings(), 0U);
}

TEST_F(StatusItemMenu, ALoginItemThatNeedsApprovalOpensTheSettings) {
  launchAndSettle();
  openMenuAndClick("Start at Login");
  desktop_.loginService().setNeedsApproval(true);
  openMenuAndClick("Start at Login");
  EXPECT_EQ(desktop_.loginService().settingsOpenings(), 1U);
  desktop_.openMenu();
  EXPECT_FALSE(menuItem("Start at Login")->isChecked);
}

TEST_F(StatusItemMenu, ALoginItemChangeThatFailsIsLoggedAndStillAsksForApproval) {
  launchAndSettle();
  openMenuAndClick("Start at Login");
  desktop_.loginService().setNeedsApproval(true);
  desktop_.loginService().failWith("held back");
  openMenuAndClick("Start at Login");
  EXPECT_EQ(logged(), std::vector<std::string>{"Zephlin: login item change failed: held back"});
  EXPECT_EQ(desktop_.loginService().settingsOpenings(), 1U);
}

TEST_F(StatusItemMenu, ReapplyNowAppliesAtOnce) {
  launchAndSettle();
  openMenuAndClick("Re-apply Now");
  desktop_.runFor(aMoment);
  EXPECT_EQ(applies(), 2U);
}

TEST_F(StatusItemMenu, TheTapTestOpensOneWindow) {
  launchAndSettle();
  openMenuAndClick("Tap Test…");
  openMenuAndClick("Tap Test…");
  EXPECT_EQ(desktop_.windows().made(), 1U);
  EXPECT_TRUE(desktop_.windows().window()->isShown);
}

TEST_F(StatusItemMenu, CheckForUpdatesAsksTheUpdater) {
  launchAndSettle();
  openMenuAndClick("Check for Updates…");
  EXPECT_EQ(desktop_.updaters().checks(), 1U);
}

TEST_F(StatusItemMenu, AboutShowsAnAlertInFrontWhileTheTimerGoesOn) {
  launchAndSettle();
  desktop_.dismissAlertAfter(700);
  desktop_.alerts().onShown = [this] {
    EXPECT_EQ(desktop_.application().activations(), 1U) << "before the alert";
  };
  openMenuAndClick("About Zephlin");
  EXPECT_EQ(desktop_.application().activations(), 1U);
  ASSERT_EQ(desktop_.alerts().shown().size(), 1U);
  const Alert& alert = desktop_.alerts().shown()[0];
  EXPECT_EQ(alert.messageText, "Zephlin · Instant Caps Lock");
  EXPECT_EQ(alert.buttons, std::vector<std::string>{"OK"});
  EXPECT_TRUE(alert.informativeText.starts_with(
      "Your Mac normally ignores quick Caps Lock taps, so fast typists end up with the wrong "
      "casing. Zephlin makes every tap register instantly, the way it should.\n\n"
      "It's completely safe. Zephlin changes nothing permanent — turn it off anytime from this "
      "menu, and your Mac goes right back to normal.\n\n"
      "To turn it off: uncheck \"Instant Caps Lock\" in the menu.\n\n"))
      << alert.informativeText;
  EXPECT_NE(alert.informativeText.back(), '\n');
  EXPECT_EQ(applies(), 3U) << "by the launch, and by the timer at 300 s and 600 s";
}

TEST_F(StatusItemMenu, AnActionOfAMenuThatOutlivesTheDelegateDoesNothing) {
  launchAndSettle();
  desktop_.openMenu();
  const auto items = desktop_.systemStatusBar().menuItems();
  const auto calls = desktop_.hidutil().calls().size();
  delegate_.reset();
  for (const auto& item : items) {
    if (const auto* action = std::get_if<std::function<void()>>(&item->action)) {
      (*action)();
    }
  }
  desktop_.runFor(10);
  EXPECT_EQ(desktop_.hidutil().calls().size(), calls);
  EXPECT_FALSE(desktop_.application().hasTerminated());
  EXPECT_EQ(desktop_.updaters().live(), 0U);
}

}  // namespace
}  // namespace zephlin
