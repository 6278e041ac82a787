#include "StandIns/Actions.h"
#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "Support/MacTest.h"

namespace zephlin::test {
namespace {

class EventTapsTest : public MacTest {
 protected:
  std::unique_ptr<Observation> listen() {
    return platform().eventTaps().listenToFlagsChanged(
        [this](const FlagsEvent& event) { seen_.push_back(event.flags); });
  }

  std::vector<ModifierFlags> seen_;
};

TEST_F(EventTapsTest, TheTapListensToTheSessionsFlagsChangedEventsAtTheHead) {
  const auto tap = listen();
  EXPECT_EQ(standins::calls({"CG", "CF"}),
            (Calls{"CGEventTapCreate(location 1, placement 0, options 1, mask 0x1000)",
                   "CFMachPortCreateRunLoopSource(0)",
                   "CFRunLoopAddSource(main, kCFRunLoopDefaultMode)", "CGEventTapEnable(true)"}));
}

TEST_F(EventTapsTest, EveryEventIsPassedOnUnchanged) {
  const auto tap = listen();
  standins::postEvent(12, 0x10100);
  standins::postEvent(10, 0x10100);
  standins::postEvent(0xFFFFFFFE, 0);
  EXPECT_EQ(seen_, std::vector<ModifierFlags>{0x10100}) << "not the notice about the tap";
  EXPECT_EQ(standins::calls({"event"}), Calls(2, "event returned unchanged"));
}

TEST_F(EventTapsTest, ATapThatTheSystemHasDisabledIsNotEnabledAgain) {
  const auto tap = listen();
  standins::forgetCalls();
  standins::postEvent(0xFFFFFFFE, 0);
  standins::postEvent(0xFFFFFFFF, 0);
  EXPECT_EQ(standins::calls({"CGEventTapEnable"}), Calls{});
}

TEST_F(EventTapsTest, TheTapIsDisabledBeforeItsSourceIsRemoved) {
  auto tap = listen();
  standins::forgetCalls();
  tap.reset();
  EXPECT_EQ(
      standins::calls({"CG", "CF"}),
      (Calls{"CGEventTapEnable(false)", "CFRunLoopRemoveSource(main, kCFRunLoopDefaultMode)"}));
  EXPECT_FALSE(standins::liveObjects().contains("CFMachPort"));
  EXPECT_FALSE(standins::liveObjects().contains("CFRunLoopSource"));
  standins::postEvent(12, 0x10000);
  EXPECT_TRUE(seen_.empty());
}

TEST_F(EventTapsTest, WhereItIsNotAllowedThereIsNoTap) {
  standins::knobs().eventTapsAllowed = false;
  EXPECT_EQ(listen(), nullptr);
  EXPECT_EQ(standins::calls({"CF", "CGEventTapEnable"}), Calls{});
}

TEST_F(EventTapsTest, TheCurrentFlagsAreThoseOfTheKeyboard) {
  standins::knobs().modifierFlags = 0x10000;
  EXPECT_EQ(platform().eventTaps().currentModifierFlags(), modifierCapsLock);
}

}  // namespace
}  // namespace zephlin::test
