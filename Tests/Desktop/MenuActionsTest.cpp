// What the entries of the menu do.

#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

class MenuActions : public DesktopTest {};

TEST_F(MenuActions, InstantCapsLockTurnsTheOverrideOffAndOnAgain) {
  App app(desktop());
  desktop().keyboards().waitUntilAllAre("0");
  app.menu().choose("Instant Caps Lock");
  desktop().keyboards().waitUntilAllAre("-1");
  app.waitForStatusLine("Off, using your Mac's normal delay");
  app.menu().choose("Instant Caps Lock");
  desktop().keyboards().waitUntilAllAre("0");
  app.waitForStatusLine("On. Every tap registers instantly");
}

TEST_F(MenuActions, TheChoiceOutlivesTheApplication) {
  std::string home;
  {
    App app(desktop());
    home = app.home();
    desktop().keyboards().waitUntilAllAre("0");
    app.menu().choose("Instant Caps Lock");
    desktop().keyboards().waitUntilAllAre("-1");
  }
  App next(desktop(), {.home = home});
  next.waitForStatusLine("Off, using your Mac's normal delay");
  EXPECT_TRUE(desktop().keyboards().allAre("-1"));
}

TEST_F(MenuActions, ReapplyNowAppliesOnce) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  desktop().keyboards().setAll(75);
  const double chosenAt = monotonicSeconds();
  app.menu().choose("Re-apply Now");
  desktop().keyboards().waitUntilAllAre("0");
  app.waitForStatusLine("On. Every tap registers instantly");
  EXPECT_EQ(desktop().hidutil().settingSince(chosenAt).size(), 1U);
}

TEST_F(MenuActions, TapTestOpensItsWindowInFront) {
  App app(desktop());
  app.menu().choose("Tap Test…");
  desktop().screen().waitForWindow("Tap Test");
  waitUntil("the window to be in front",
            [&] { return desktop().screen().titleOfActiveWindow() == "Tap Test"; });
}

TEST_F(MenuActions, CheckForUpdatesAnswersInAWindow) {
  App app(desktop());
  app.menu().choose("Check for Updates…");
  const xcb_window_t window = desktop().screen().waitForWindow("Zephlin");
  waitUntil("the window to be in front",
            [&] { return desktop().screen().titleOfActiveWindow() == "Zephlin"; });
  desktop().photograph("check-for-updates");
  desktop().screen().close(window);
  desktop().screen().waitUntilNoWindow("Zephlin");
  EXPECT_FALSE(app.program().hasEnded());
}

TEST_F(MenuActions, QuitEndsTheApplicationAndLeavesTheOverride) {
  App app(desktop());
  desktop().keyboards().waitUntilAllAre("0");
  app.menu().choose("Quit Zephlin");
  EXPECT_EQ(app.program().waitForEnd(), 0);
  EXPECT_TRUE(desktop().keyboards().allAre("0"));
}

TEST_F(MenuActions, AThousandQuickClicksSettleOnTheLast) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  const double firstAt = monotonicSeconds();
  constexpr std::size_t clicks = 1001;
  for (std::size_t click = 0; click < clicks; ++click) {
    const MenuEntry entry = app.menu().entry("Instant Caps Lock");
    app.menu().click(entry.id);
    waitUntil("the other choice",
              [&] { return app.menu().entry("Instant Caps Lock").isChecked != entry.isChecked; });
  }
  waitUntil("the last result",
            [&] { return desktop().hidutil().settingSince(firstAt).size() == clicks; });
  desktop().keyboards().waitUntilAllAre("-1");
  app.waitForStatusLine("Off, using your Mac's normal delay");
  app.waitForToolTip("Zephlin: disabled (Apple default delay)");
  EXPECT_FALSE(app.menu().entry("Instant Caps Lock").isChecked);
}

}  // namespace
}  // namespace zephlin::test
