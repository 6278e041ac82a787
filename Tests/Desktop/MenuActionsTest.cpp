// What the entries of the menu do.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

/// The child processes of all threads of a process.
std::vector<pid_t> childrenOf(pid_t process) {
  std::vector<pid_t> children;
  const std::string threads = "/proc/" + std::to_string(process) + "/task";
  for (const auto& thread : std::filesystem::directory_iterator(threads)) {
    std::ifstream list(thread.path() / "children");
    children.insert(children.end(), std::istream_iterator<pid_t>(list), {});
  }
  return children;
}

/// Also true for a process that nobody has waited for yet.
bool hasEnded(pid_t process) {
  const std::string status = contentOf("/proc/" + std::to_string(process) + "/status");
  return status.empty() || status.find("\nState:\tZ") != std::string::npos;
}

class MenuActions : public DesktopTest {};

TEST_F(MenuActions, InstantCapsLockTurnsTheOverrideOffAndOnAgain) {
  App app(desktop());
  desktop().keyboards().waitUntilAllAre("0");
  app.item().choose("Instant Caps Lock");
  desktop().keyboards().waitUntilAllAre("-1");
  app.waitForStatusLine("Off, using your Mac's normal delay");
  app.item().choose("Instant Caps Lock");
  desktop().keyboards().waitUntilAllAre("0");
  app.waitForStatusLine("On. Every tap registers instantly");
}

TEST_F(MenuActions, TheChoiceOutlivesTheApplication) {
  std::string home;
  {
    App app(desktop());
    home = app.home();
    desktop().keyboards().waitUntilAllAre("0");
    app.item().choose("Instant Caps Lock");
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
  app.item().choose("Re-apply Now");
  desktop().keyboards().waitUntilAllAre("0");
  app.waitForStatusLine("On. Every tap registers instantly");
  EXPECT_EQ(desktop().hidutil().settingSince(chosenAt).size(), 1U);
}

TEST_F(MenuActions, TapTestOpensItsWindowInFront) {
  App app(desktop());
  app.item().choose("Tap Test…");
  desktop().screen().waitForWindow("Tap Test");
  waitUntil("the window to be in front",
            [&] { return desktop().screen().titleOfActiveWindow() == "Tap Test"; });
}

TEST_F(MenuActions, CheckForUpdatesShowsAnAlert) {
  App app(desktop());
  app.item().choose("Check for Updates…");
  const xcb_window_t window = desktop().screen().waitForWindow("Zephlin");
  waitUntil("the window to be in front",
            [&] { return desktop().screen().titleOfActiveWindow() == "Zephlin"; });
  desktop().photograph("check-for-updates");
  desktop().screen().close(window);
  desktop().screen().waitUntilNoWindow("Zephlin");
  EXPECT_FALSE(app.program().hasEnded());
}

TEST_F(MenuActions, NothingIsLoadedForTheNetwork) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  const std::string maps = contentOf("/proc/" + std::to_string(app.program().id()) + "/maps");
  EXPECT_NE(maps.find("libQt6Gui"), std::string::npos);
  EXPECT_EQ(maps.find("libQt6Network"), std::string::npos);
}

TEST_F(MenuActions, QuitEndsTheApplicationAndLeavesTheOverride) {
  App app(desktop());
  desktop().keyboards().waitUntilAllAre("0");
  EXPECT_EQ(app.quit(), 0);
  EXPECT_TRUE(desktop().keyboards().allAre("0"));
}

TEST_F(MenuActions, QuitRunsHidutilNoMore) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  const double chosenAt = monotonicSeconds();
  app.item().choose("Re-apply Now");
  // It reads the status twice, for itself and for the menu, and that is the last of what is queued.
  std::size_t runs = 0;
  waitUntil("the status to be read", [&] {
    const std::vector<HidutilRun> all = desktop().hidutil().all();
    runs = all.size();
    return runs >= 3 && all[runs - 3].sets && all[runs - 3].startedAt >= chosenAt;
  });
  app.item().clickAtOnce(app.item().entry("Quit Zephlin").id);
  EXPECT_EQ(app.program().waitForEnd(), 0);
  EXPECT_EQ(desktop().hidutil().all().size(), runs);
}

TEST_F(MenuActions, QuitWaitsForNoRunOfHidutilAndEndsTheOneThatHangs) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  desktop().hidutil().hold();
  app.item().choose("Re-apply Now");
  waitUntil("a run that hangs", [&] { return desktop().hidutil().isHeld(); });
  const std::size_t runs = desktop().hidutil().all().size();
  const std::vector<pid_t> children = childrenOf(app.program().id());
  ASSERT_EQ(children.size(), 1U);
  app.item().clickAtOnce(app.item().entry("Quit Zephlin").id);
  EXPECT_EQ(app.program().waitForEnd(), 0);
  waitUntil("the end of the run", [&] { return hasEnded(children.front()); });
  EXPECT_EQ(desktop().hidutil().all().size(), runs);
}

TEST_F(MenuActions, AThousandQuickClicksSettleOnTheLast) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  const int id = app.item().entry("Instant Caps Lock").id;
  const double firstAt = monotonicSeconds();
  constexpr int clicks = 1001;
  app.item().clickAtOnce(id, clicks);
  constexpr int stage = 143;
  for (int done = stage; done <= clicks; done += stage) {
    waitUntil(std::to_string(done) + " results", [&] {
      return desktop().hidutil().settingSince(firstAt).size() >= static_cast<std::size_t>(done);
    });
  }
  desktop().keyboards().waitUntilAllAre("-1");
  app.waitForStatusLine("Off, using your Mac's normal delay");
  app.waitForToolTip("Zephlin: disabled (Apple default delay)");
  const MenuEntry entry = app.item().entry("Instant Caps Lock");
  EXPECT_EQ(entry.id, id);
  EXPECT_FALSE(entry.isChecked());
  EXPECT_EQ(desktop().hidutil().settingSince(firstAt).size(), static_cast<std::size_t>(clicks));
}

}  // namespace
}  // namespace zephlin::test
