// The tap test for users who hear it and use no mouse.

#include "Tests/Desktop/Harness/Accessibility.h"
#include "Tests/Desktop/Harness/DesktopTest.h"
#include "Tests/Support/AnnouncementListener.h"

namespace zephlin::test {
namespace {

class ScreenReader : public DesktopTest {
 protected:
  void SetUp() override {
    app_.item().choose("Tap Test…");
    desktop().screen().waitForWindow("Tap Test");
    waitForText("Waiting for taps…");
    // The first event of another modifier is what counting starts from.
    desktop().fingers().tap(Key::ShiftLeft);
  }

  void waitForText(const std::string& text) { reader_.waitForName(app_.program().id(), text); }
  [[nodiscard]] std::string roleOf(const std::string& name) const {
    return reader_.roleOf(app_.program().id(), name);
  }

  App app_{desktop(), {.environment = accessible()}};
  Accessibility reader_{desktop().sessionBus()};
};

TEST_F(ScreenReader, FindsEveryPartByItsNameAndRole) {
  EXPECT_EQ(roleOf("Tap Test"), "dialog");
  EXPECT_EQ(roleOf("Is your Caps Lock instant?"), "label");
  EXPECT_EQ(roleOf("0 Taps"), "label");
  EXPECT_EQ(roleOf("0 Registered"), "label");
  EXPECT_EQ(roleOf("Waiting for taps…"), "notification");
  EXPECT_EQ(roleOf("Reset"), "push button");
}

TEST_F(ScreenReader, IsToldTheVerdictWhenItChanges) {
  const AnnouncementListener listener(busAddress(desktop().sessionBus()));
  const auto waitFor = [&](const std::vector<std::string>& texts) {
    waitUntil("an announcement", [&] { return listener.announced().size() >= texts.size(); });
    EXPECT_EQ(listener.announced(), texts);
  };
  desktop().fingers().tap(Key::CapsLock);
  waitFor({"Every tap registered. Instant"});
  // The same again is not said again.
  desktop().fingers().tap(Key::CapsLock);
  waitForText("2 Registered");
  reader_.push(app_.program().id(), "Reset");
  waitFor({"Every tap registered. Instant", "Waiting for taps…"});
}

TEST_F(ScreenReader, TheTapTestCanBeUsedByKeysAlone) {
  desktop().fingers().tap(Key::CapsLock);
  waitForText("1 Registered");
  // Nothing has the focus yet.
  desktop().fingers().tap(Key::Return);
  desktop().fingers().tap(Key::CapsLock);
  waitForText("2 Registered");
  desktop().fingers().tap(Key::Tab);
  desktop().photograph("tap-test-focus");
  desktop().fingers().tap(Key::Return);
  waitForText("0 Taps");
  desktop().fingers().tap(Key::Escape);
  desktop().screen().waitUntilNoWindow("Tap Test");
}

}  // namespace
}  // namespace zephlin::test
