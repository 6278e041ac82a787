// One instance a user, what the command line says while it runs, and how it ends.

#include <csignal>
#include <filesystem>
#include <random>

#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

class Instances : public DesktopTest {};

TEST_F(Instances, ASecondStartShowsTheTapTestOfTheFirstAndEnds) {
  App first(desktop());
  first.item();
  App second(desktop(), {.home = first.home()});
  EXPECT_EQ(second.program().waitForEnd(), 0);
  const xcb_window_t window = desktop().screen().waitForWindow("Tap Test");
  EXPECT_EQ(desktop().registeredItems().size(), 1);
  EXPECT_FALSE(first.program().hasEnded());

  // Also when it is hidden again.
  desktop().screen().close(window);
  desktop().screen().waitUntilNoWindow("Tap Test");
  App third(desktop(), {.home = first.home()});
  EXPECT_EQ(third.program().waitForEnd(), 0);
  desktop().screen().waitForWindow("Tap Test");
}

TEST_F(Instances, APreviewIsShownByTheInstanceThatRunsAlready) {
  App first(desktop());
  first.item();
  const std::string file = first.home() + "/preview.png";
  App preview(desktop(),
              {.home = first.home(),
               .environment = {{"ZEPHLIN_PREVIEW", "taptest"}, {"ZEPHLIN_PREVIEW_OUT", file}}});
  EXPECT_EQ(preview.program().waitForEnd(), 0);
  desktop().screen().waitForWindow("Tap Test");
  EXPECT_EQ(desktop().registeredItems().size(), 1);
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_FALSE(first.program().hasEnded());
}

TEST_F(Instances, TheCommandLineSaysThatAPreviewRuns) {
  App preview(desktop(), {.environment = {{"ZEPHLIN_PREVIEW", "taptest"}}});
  preview.waitForStatusLine("On. Every tap registers instantly");
  const Outcome outcome = runIn(preview.environment(), {"/usr/bin/Zephlin", "apply"});
  EXPECT_NE(outcome.output.find("note: the Zephlin menu bar app is running"), std::string::npos)
      << outcome.output;
}

TEST_F(Instances, TheCommandLineSaysThatTheApplicationRuns) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  const std::string report =
      "Caps Lock delay override applied and verified (0 ms on 2 keyboard services).\n";
  const std::string note =
      "note: the Zephlin menu bar app is running and will re-assert its own setting";
  const std::string advice = ". Prefer the ⇪ menu toggle while it runs.\n";
  EXPECT_EQ(runIn(app.environment(), {"/usr/bin/Zephlin", "apply"}),
            (Outcome{0, report + note + advice, ""}));
  EXPECT_EQ(runIn(app.environment(), {"/usr/bin/Zephlin", "restore"}),
            (Outcome{0,
                     "Restored Apple default Caps Lock behavior (75 ms delay). A reboot resets the "
                     "override entirely.\n" +
                         note + " and undo this restore" + advice,
                     ""}));
  const Outcome status = runIn(app.environment(), {"/usr/bin/Zephlin", "status"});
  EXPECT_EQ(status.output.find("note:"), std::string::npos) << status.output;

  EXPECT_EQ(app.quit(), 0);
  EXPECT_EQ(runIn(app.environment(), {"/usr/bin/Zephlin", "apply"}), (Outcome{0, report, ""}));
}

TEST_F(Instances, SignalsEndItOrderlyAndTheOverrideStays) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    desktop().keyboards().setAll(-1);
    App app(desktop());
    app.waitForStatusLine("On. Every tap registers instantly");
    app.program().send(signal);
    EXPECT_EQ(app.program().waitForEnd(), 0) << signal;
    EXPECT_TRUE(desktop().keyboards().allAre("0"));
    EXPECT_EQ(app.program().log(), "");
  }
}

TEST_F(Instances, SettingsAreWholeAfterItWasKilledAtAnyMoment) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> lifetime(0, 0.4);
  const std::string home = desktop().makeHome();
  for (int kill = 0; kill < 20; ++kill) {
    App app(desktop(), {.home = home});
    app.item();
    const double until = monotonicSeconds() + lifetime(random);
    while (monotonicSeconds() < until) {
      app.item().click(app.item().entry("Instant Caps Lock").id);
    }
    app.program().send(SIGKILL);
    EXPECT_EQ(app.program().waitForEnd(), -SIGKILL);
    EXPECT_TRUE(app.program().log().empty()) << app.program().log();
  }
  App last(desktop(), {.home = home});
  // One that is off leaves the keyboards as they are.
  if (!last.item().entry("Instant Caps Lock").isChecked()) {
    last.item().choose("Instant Caps Lock");
  }
  last.waitForStatusLine("On. Every tap registers instantly");
  EXPECT_TRUE(desktop().keyboards().allAre("0"));
}

}  // namespace
}  // namespace zephlin::test
