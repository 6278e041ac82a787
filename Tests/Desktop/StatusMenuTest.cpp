// The menu: what hosts receive over D-Bus, and what a person sees in the panel.

#include <ostream>

#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

constexpr const char* onLine = "On. Every tap registers instantly";
constexpr const char* offLine = "Off, using your Mac's normal delay";

struct Shown {
  std::string label;
  bool isEnabled = true;
  bool isChecked = false;
  std::string shortcut{};

  bool operator==(const Shown&) const = default;
};

void PrintTo(const Shown& entry, std::ostream* stream) {
  *stream << '"' << entry.label << '"' << (entry.isEnabled ? "" : ", disabled")
          << (entry.isChecked ? ", checked" : "") << ", shortcut \"" << entry.shortcut << '"';
}

const Shown separator{"(separator)"};

std::vector<Shown> shownBy(const TrayItem& item) {
  std::vector<Shown> result;
  for (const MenuEntry& entry : item.entries()) {
    EXPECT_TRUE(entry.isVisible()) << entry.label();
    result.push_back(entry.isSeparator() ? separator
                                         : Shown{entry.label(), entry.isEnabled(),
                                                 entry.isChecked(), entry.shortcut()});
  }
  return result;
}

std::vector<Shown> expectedMenu(const std::string& statusLine, bool isOn) {
  return {{"Zephlin · Instant Caps Lock", false},
          {statusLine, false},
          separator,
          {"Instant Caps Lock", true, isOn},
          {"Start at Login", false},
          {"Re-apply Now", isOn},
          separator,
          {"Tap Test…"},
          {"Check for Updates…"},
          {"About Zephlin"},
          {"Quit Zephlin", true, false, "Control+Q"}};
}

/// How often the menu has said that something of it has changed.
int announcedChanges(const TrayItem& item) {
  return item.signalsSent("LayoutUpdated") + item.signalsSent("ItemsPropertiesUpdated");
}

class StatusMenu : public DesktopTest {
 protected:
  /// Of a menu with eleven entries, separators among them.
  static constexpr int smallestHeight = 11 * 15;

  /// Opens the menu in the panel with a mouse button and returns when it is there.
  xcb_window_t openInPanel(int button) {
    const QRect icon = desktop().panel().waitForIcon();
    waitUntil("the menu on the screen", [&] {
      desktop().fingers().click(icon.center(), button);
      waitUntil("a menu on the screen", [] { return desktop().screen().openMenu().has_value(); });
      if (desktop().screen().placeOf(*desktop().screen().openMenu()).height() > smallestHeight) {
        return true;
      }
      // The panel opens one of its own, with five entries, until it has read the item's.
      desktop().fingers().tap(Key::Escape);
      waitUntilNoMenu();
      return false;
    });
    return *desktop().screen().openMenu();
  }

  void waitUntilNoMenu() {
    waitUntil("the menu to go", [] { return !desktop().screen().openMenu().has_value(); });
  }
};

TEST_F(StatusMenu, HasElevenEntriesTwiceInARow) {
  App app(desktop());
  app.waitForStatusLine(onLine);
  for (int opening = 0; opening < 2; ++opening) {
    app.item().aboutToShow();
    app.item().opened();
    EXPECT_EQ(shownBy(app.item()), expectedMenu(onLine, true));
    app.item().closed();
  }
}

TEST_F(StatusMenu, IsUpToDateForAHostThatDoesNotAnnounceItself) {
  App app(desktop());
  waitUntil("the first result", [&] { return app.item().statusLine() == onLine; });
  app.item().click(app.item().entry("Instant Caps Lock").id);
  waitUntil("the menu when it is off",
            [&] { return shownBy(app.item()) == expectedMenu(offLine, false); });
  app.item().click(app.item().entry("Instant Caps Lock").id);
  waitUntil("the menu when it is on",
            [&] { return shownBy(app.item()) == expectedMenu(onLine, true); });
}

TEST_F(StatusMenu, ChangesItsStatusLineWhileItIsOpen) {
  App app(desktop());
  app.waitForStatusLine(onLine);
  desktop().hidutil().hold();
  app.item().aboutToShow();
  app.item().opened();
  // One run at a time: nothing else is read while this one is held.
  waitUntil("a run of hidutil", [&] { return desktop().hidutil().isHeld(); });
  desktop().keyboards().setAll(75);
  EXPECT_EQ(app.item().statusLine(), onLine);

  const int changes = announcedChanges(app.item());
  desktop().hidutil().release();
  waitUntil("an announcement", [&] { return announcedChanges(app.item()) > changes; });
  waitUntil("the new line",
            [&] { return app.item().statusLine() == "Couldn't confirm. Try Re-apply Now"; });
}

TEST_F(StatusMenu, ShowsInThePanelAndTakesAChoice) {
  App app(desktop());
  app.waitForStatusLine(onLine);
  constexpr int rightButton = 3;
  openInPanel(rightButton);
  desktop().photograph("menu-in-panel");

  // The first entry that can be chosen.
  desktop().fingers().tap(Key::Down);
  desktop().photograph("menu-in-panel-first-entry");
  desktop().fingers().tap(Key::Return);
  waitUntilNoMenu();
  app.waitForToolTip("Zephlin: disabled (Apple default delay)");
  desktop().keyboards().waitUntilAllAre("-1");

  openInPanel(rightButton);
  waitUntil("the status line", [&] { return app.item().statusLine() == offLine; });
  desktop().photograph("menu-in-panel-off");
  desktop().fingers().tap(Key::Escape);
  waitUntilNoMenu();
}

TEST_F(StatusMenu, ShowsAfterAClickWithTheLeftButtonToo) {
  App app(desktop());
  app.waitForStatusLine(onLine);
  constexpr int leftButton = 1;
  openInPanel(leftButton);
  desktop().photograph("menu-after-left-click");
  desktop().fingers().tap(Key::Escape);
  waitUntilNoMenu();
}

}  // namespace
}  // namespace zephlin::test
