// The tap test, driven by keys of the X server.

#include <algorithm>

#include "Tests/Desktop/Harness/Accessibility.h"
#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

/// How many pixels are so much more red or green than anything else that they are meant to be.
struct Colours {
  int red = 0;
  int green = 0;
};

Colours coloursIn(const QImage& picture) {
  constexpr int margin = 60;
  Colours colours;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      const QRgb pixel = picture.pixel(x, y);
      colours.red += qRed(pixel) - std::max(qGreen(pixel), qBlue(pixel)) > margin ? 1 : 0;
      colours.green += qGreen(pixel) - std::max(qRed(pixel), qBlue(pixel)) > margin ? 1 : 0;
    }
  }
  return colours;
}

class TapTestWindow : public DesktopTest {
 protected:
  void SetUp() override {
    useKeymap({});
    if (desktop().fingers().isCapsLockOn()) {
      desktop().fingers().tap(Key::CapsLock);
    }
    open();
  }
  void TearDown() override {
    useKeymap({});
    DesktopTest::TearDown();
  }

  void open() {
    app_.item().choose("Tap Test…");
    window_ = desktop().screen().waitForWindow("Tap Test");
    waitForText("Waiting for taps…");
  }

  void close() {
    desktop().screen().close(window_);
    desktop().screen().waitUntilNoWindow("Tap Test");
  }

  /// With the options of the X keyboard extension and no others.
  void useKeymap(const std::vector<std::string>& options) {
    std::vector<std::string> command{"/usr/bin/setxkbmap", "-layout", "us", "-option", ""};
    for (const std::string& option : options) {
      command.insert(command.end(), {"-option", option});
    }
    ASSERT_EQ(runIn(app_.environment(), command).status, 0);
  }

  void waitForText(const std::string& text) { reader_.waitForName(app_.program().id(), text); }

  [[nodiscard]] std::string textBeginning(const std::string& beginning) const {
    return reader_.nameBeginning(app_.program().id(), beginning);
  }

  [[nodiscard]] Colours colours() const {
    return coloursIn(desktop().screen().picture(desktop().screen().placeOf(window_)));
  }

  App app_{desktop(), {.environment = accessible()}};
  Accessibility reader_{desktop().sessionBus()};
  xcb_window_t window_ = XCB_WINDOW_NONE;
};

TEST_F(TapTestWindow, CarriesTheApplicationsIcon) {
  const auto icon = desktop().screen().connection().numbers(window_, "_NET_WM_ICON");
  ASSERT_FALSE(icon.empty());
  constexpr std::uint32_t ownWidth = 128;
  EXPECT_EQ(icon.front(), ownWidth) << "the window manager's for windows without one is another";
}

TEST_F(TapTestWindow, CountsTapsAndFindsThemAllRegistered) {
  for (int tap = 1; tap <= 4; ++tap) {
    desktop().fingers().tap(Key::CapsLock);
    waitForText(std::to_string(tap) + " Taps");
    waitForText(std::to_string(tap) + " Registered");
    waitForText("Every tap registered. Instant");
  }
  EXPECT_TRUE(textBeginning("Last tap registered in ").ends_with(" ms"));
  EXPECT_EQ(textBeginning("Zephlin only"),
            "Zephlin only watches the Caps Lock key here, nothing else you type.");
  waitUntil("the green verdict", [this] { return colours().green > 100; });
  EXPECT_EQ(colours().red, 0);
  desktop().photograph("tap-test-green");
}

TEST_F(TapTestWindow, SaysHowManyTapsWentMissing) {
  // Caps Lock is another Control key, and no tap locks anything.
  useKeymap({"ctrl:nocaps"});
  desktop().fingers().tap(Key::CapsLock);
  waitForText("1 tap went missing. The delay is on");
  desktop().fingers().tap(Key::CapsLock);
  desktop().fingers().tap(Key::CapsLock);
  waitForText("3 taps went missing. The delay is on");
  waitForText("3 Taps");
  waitForText("0 Registered");
  waitUntil("the red verdict", [this] { return colours().red > 100; });
  EXPECT_EQ(colours().green, 0);
  desktop().photograph("tap-test-red");
}

TEST_F(TapTestWindow, StartsAnewAfterReset) {
  desktop().fingers().tap(Key::CapsLock);
  waitForText("1 Registered");
  reader_.push(app_.program().id(), "Reset");
  waitForText("0 Taps");
  waitForText("0 Registered");
  waitForText("Waiting for taps…");
  desktop().photograph("tap-test-reset");

  desktop().fingers().tap(Key::CapsLock);
  waitForText("1 Taps");
  waitForText("1 Registered");
  waitForText("Every tap registered. Instant");
}

TEST_F(TapTestWindow, CountsNoOtherKeys) {
  for (const Key key : {Key::LetterA, Key::ControlLeft, Key::ShiftLeft}) {
    desktop().fingers().tap(key);
  }
  // What came before the tap was seen before it.
  desktop().fingers().tap(Key::CapsLock);
  waitForText("1 Registered");
  waitForText("1 Taps");
}

TEST_F(TapTestWindow, StartsAnewWhenItIsClosedAndOpenedAgain) {
  desktop().fingers().tap(Key::CapsLock);
  waitForText("1 Registered");
  close();
  desktop().fingers().tap(Key::CapsLock);
  open();
  waitForText("0 Taps");
  waitForText("0 Registered");
  desktop().fingers().tap(Key::CapsLock);
  waitForText("1 Taps");
  waitForText("1 Registered");
}

TEST_F(TapTestWindow, ClosesWithEscapeAndLeavesTheApplicationRunning) {
  desktop().fingers().tap(Key::Escape);
  desktop().screen().waitUntilNoWindow("Tap Test");
  app_.waitForStatusLine("On. Every tap registers instantly");
}

}  // namespace
}  // namespace zephlin::test
