// The About alert.

#include <csignal>

#include "Tests/Desktop/Harness/Accessibility.h"
#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

class AboutAlert : public DesktopTest {
 protected:
  void open() {
    app_.item().choose("About Zephlin");
    desktop().screen().waitForWindow("Zephlin");
    waitUntil("the alert to be in front",
              [&] { return desktop().screen().titleOfActiveWindow() == "Zephlin"; });
  }

  App app_{desktop(), {.environment = accessible()}};
};

TEST_F(AboutAlert, SaysWhatZephlinDoes) {
  const Accessibility reader(desktop().sessionBus());
  open();
  reader.waitForName(app_.program().id(), "OK");
  desktop().photograph("about");
  std::string all;
  for (const std::string& name : reader.namesIn(app_.program().id())) {
    all += name + "\n";
  }
  for (const char* text :
       {"Zephlin · Instant Caps Lock",
        "Your Mac normally ignores quick Caps Lock taps, so fast typists end up with the wrong "
        "casing. Zephlin makes every tap register instantly, the way it should.\n\n",
        "It's completely safe. Zephlin changes nothing permanent — turn it off anytime from this "
        "menu, and your Mac goes right back to normal.\n\n",
        "To turn it off: uncheck \"Instant Caps Lock\" in the menu.\n\n"}) {
    EXPECT_NE(all.find(text), std::string::npos) << text << "\nis not in\n" << all;
  }
}

TEST_F(AboutAlert, ClosesWithItsButton) {
  const Accessibility reader(desktop().sessionBus());
  open();
  reader.push(app_.program().id(), "OK");
  desktop().screen().waitUntilNoWindow("Zephlin");
}

TEST_F(AboutAlert, ClosesWithEnterAndWithEscape) {
  for (const Key key : {Key::Return, Key::Escape}) {
    open();
    desktop().fingers().tap(key);
    desktop().screen().waitUntilNoWindow("Zephlin");
  }
}

TEST_F(AboutAlert, IsShownOnceHoweverOftenItIsChosen) {
  for (int choice = 0; choice < 3; ++choice) {
    open();
  }
  desktop().fingers().tap(Key::Escape);
  desktop().screen().waitUntilNoWindow("Zephlin");
}

TEST_F(AboutAlert, KeepsOtherWindowsFromBeingUsedUntilItIsClosed) {
  const Accessibility reader(desktop().sessionBus());
  const Screen& screen = desktop().screen();
  app_.item().choose("Tap Test…");
  const xcb_window_t window = screen.waitForWindow("Tap Test");
  open();
  screen.close(window);
  desktop().photograph("about-over-tap-test");
  reader.push(app_.program().id(), "OK");
  screen.waitUntilNoWindow("Zephlin");
  EXPECT_TRUE(screen.windowTitled("Tap Test").has_value());
  screen.close(window);
  screen.waitUntilNoWindow("Tap Test");
}

TEST_F(AboutAlert, LetsTheKeyboardsBeWatchedWhileItIsOpen) {
  open();
  desktop().keyboards().waitUntilAllAre("0");
  const std::string plugged = desktop().keyboards().plug();
  desktop().keyboards().waitUntilAllAre("0");
  desktop().keyboards().pull(plugged);
  EXPECT_TRUE(desktop().screen().windowTitled("Zephlin").has_value());
}

TEST_F(AboutAlert, EndsWithTheApplication) {
  open();
  app_.program().send(SIGTERM);
  EXPECT_EQ(app_.program().waitForEnd(), 0);
}

}  // namespace
}  // namespace zephlin::test
