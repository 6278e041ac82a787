#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "Support/ApplicationTest.h"
#import "Support/Mac.h"
#import "Support/StandInMac.h"

namespace zephlin::test {
namespace {

class MenuOnStandInsTest : public ApplicationTest {};

TEST_F(MenuOnStandInsTest, InABundleTheLoginItemIsCheckedOnceItIsRegistered) {
  standins::knobs().mainBundlePath = "/Applications/Zephlin.app";
  launch([] {
    openMenu();
    EXPECT_EQ([item("Start at Login") state], NSControlStateValueOn);
    EXPECT_TRUE([item("Start at Login") isEnabled]);
  });
}

TEST_F(MenuOnStandInsTest, CheckingForUpdatesIsSparklesAction) {
  standins::knobs().bundleHasSparkle = true;
  launch([] {
    openMenu();
    NSMenuItem* const check = item("Check for Updates…");
    EXPECT_STREQ([NSStringFromClass([[check target] class]) UTF8String],
                 "SPUStandardUpdaterController");
    EXPECT_STREQ([NSStringFromSelector([check action]) UTF8String], "checkForUpdates:");
    choose("Check for Updates…");
  });
  EXPECT_EQ(standins::calls({"SPU"}),
            (Calls{"SPUStandardUpdaterController init(starting 1, delegates none)",
                   "SPUStandardUpdaterController checkForUpdates:"}));
}

TEST_F(MenuOnStandInsTest, AboutActivatesAndThenShowsAnAlertWithOneButton) {
  launch([] {
    standins::forgetCalls();
    mac::whenModal([] { clickInModalWindow("OK"); });
    openMenu();
    choose("About Zephlin");
    EXPECT_EQ(standins::calls({"NSApplication", "NSAlert"}),
              (Calls{"NSApplication activateIgnoringOtherApps:1",
                     "NSAlert runModal(style 1, 1 buttons)"}));
  });
}

TEST_F(MenuOnStandInsTest, QuitTerminatesWithoutSender) {
  launch([] {
    openMenu();
    choose("Quit Zephlin");
  });
  EXPECT_EQ(standins::calls({"NSApplication terminate"}).front(), "NSApplication terminate:nil");
}

}  // namespace
}  // namespace zephlin::test
