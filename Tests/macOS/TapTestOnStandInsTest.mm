#include <algorithm>

#include "StandIns/Actions.h"
#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "Support/ApplicationTest.h"
#import "Support/StandInMac.h"

namespace zephlin::test {
namespace {

class TapTestOnStandInsTest : public ApplicationTest {
 protected:
  static void press() {
    standins::reportKey(7, 57, 1);
    standins::reportKey(7, 57, 0);
  }
  static bool shows(const std::string& text) {
    const Calls texts = tapTestTexts();
    return std::find(texts.begin(), texts.end(), text) != texts.end();
  }
};

TEST_F(TapTestOnStandInsTest, TheApplicationIsActivatedWhenTheWindowIsShown) {
  launch([] {
    standins::forgetCalls();
    openTapTest();
    // GNUstep activates once more when a window comes to the front.
    EXPECT_EQ(standins::calls({"NSApplication"}),
              Calls(2, "NSApplication activateIgnoringOtherApps:1"));
  });
}

TEST_F(TapTestOnStandInsTest, ATapThatRegistersIsCountedWithItsLatency) {
  launch([] {
    openTapTest();
    EXPECT_TRUE(shows("Waiting for taps…"));
    standins::postEvent(12, 0);
    press();
    standins::advance(0.012);
    standins::postEvent(12, 0x10000);
    EXPECT_TRUE(shows("Every tap registered. Instant"));
    EXPECT_TRUE(shows("Last tap registered in 12 ms"));
    press();
    EXPECT_TRUE(shows("1 tap went missing. The delay is on"));
  });
}

TEST_F(TapTestOnStandInsTest, ClosingTheWindowTakesTheChannelsDownInOrder) {
  launch([] {
    openTapTest();
    standins::forgetCalls();
    [tapTestWindow() performClose:nil];
    EXPECT_EQ(standins::calls({"IOHID", "CG", "CF"}),
              (Calls{"IOHIDManagerUnscheduleFromRunLoop(main, kCFRunLoopDefaultMode)",
                     "IOHIDManagerClose(0)", "IOHIDManager released", "CGEventTapEnable(false)",
                     "CFRunLoopRemoveSource(main, kCFRunLoopDefaultMode)"}));
  });
}

TEST_F(TapTestOnStandInsTest, WithoutPermissionsTheFailuresAreLoggedAndThePollingCounts) {
  standins::knobs().hidOpenResult = static_cast<std::int32_t>(0xe00002e2);
  standins::knobs().eventTapsAllowed = false;
  launch([] {
    openTapTest();
    EXPECT_EQ(logLines(),
              (Calls{"Zephlin: IOHIDManagerOpen failed (0xe00002e2), press channel disabled",
                     "Zephlin: could not create flagsChanged event tap, falling back to polling"}));
    EXPECT_TRUE(
        shows("To count taps, allow Zephlin under System Settings › Privacy & Security › Input "
              "Monitoring."));
    EXPECT_EQ(standins::calls({"NSRunLoop"}).back(),
              "NSRunLoop addTimer(interval 0.01, tolerance 0, main, common modes)");
    standins::fireTimers(0.01);
    standins::knobs().modifierFlags = 0x10000;
    standins::fireTimers(0.01);
    standins::fireTimers(0.01);
    EXPECT_TRUE(shows("1"));
    [tapTestWindow() performClose:nil];
    EXPECT_EQ(standins::calls({"NSTimer"}), Calls{"NSTimer invalidate(interval 0.01)"});
  });
}

}  // namespace
}  // namespace zephlin::test
