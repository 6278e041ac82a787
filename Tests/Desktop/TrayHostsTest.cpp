// Trays come and go, and not all are of the newer kind.

#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

class TrayHosts : public DesktopTest {};

TEST_F(TrayHosts, TheIconIsBackWhenThePanelIsRestarted) {
  App app(desktop());
  app.item();
  for (int restart = 0; restart < 2; ++restart) {
    desktop().stopPanel();
    desktop().panel().waitForIcon();
    waitUntil("the item's registration", [&] { return desktop().registeredItems().size() == 1; });
  }
  EXPECT_EQ(app.quit(), 0);
}

TEST_F(TrayHosts, TheIconComesWithAPanelThatIsStartedLater) {
  desktop().stopPanel();
  App app(desktop());
  desktop().keyboards().waitUntilAllAre("0");
  desktop().panel().waitForIcon();
  app.waitForToolTip("Zephlin: instant Caps Lock is ON");
  app.waitForStatusLine("On. Every tap registers instantly");
  desktop().photograph("late-panel");
}

TEST_F(TrayHosts, TheIconAndItsMenuShowInATrayOfTheOlderKind) {
  desktop().stopPanel();
  const std::string home = desktop().makeHome();
  const Program tray({"/usr/bin/trayer", "--edge", "bottom", "--align", "left", "--widthtype",
                      "pixel", "--width", "64", "--height", "32", "--SetDockType", "false",
                      "--transparent", "false", "--tint", "0x202020"},
                     desktop().environment(home), desktop().logFile("trayer"));
  waitUntil("a tray", [] { return desktop().screen().hasOwner("_NET_SYSTEM_TRAY_S0"); });
  const QRect firstIcon(0, 768 - 32, 24, 32);
  const QRgb wallpaper = desktop().screen().picture().pixel(512, 384);
  waitUntil("the tray's window", [&] {
    return desktop().screen().picture(firstIcon).pixel(firstIcon.center() - firstIcon.topLeft()) !=
               wallpaper &&
           desktop().screen().isStill();
  });
  const QImage empty = desktop().screen().picture(firstIcon);

  App app(desktop(), {.home = home});
  waitUntil("an icon", [&] {
    return desktop().screen().picture(firstIcon) != empty && desktop().screen().isStill();
  });
  desktop().photograph("tray-of-the-older-kind");
  constexpr int rightButton = 3;
  desktop().fingers().click(firstIcon.center(), rightButton);
  waitUntil("the menu", [] { return desktop().screen().openMenu().has_value(); });
  desktop().photograph("tray-of-the-older-kind-menu");
  desktop().fingers().tap(Key::Escape);
  waitUntil("the menu to go", [] { return !desktop().screen().openMenu().has_value(); });

  // Ctrl+H hides the application's windows, which do not include the icon's.
  App second(desktop(), {.home = home});
  desktop().screen().waitForWindow("Tap Test");
  waitUntil("the window to be in front",
            [] { return desktop().screen().titleOfActiveWindow() == "Tap Test"; });
  const QImage icon = desktop().screen().picture(firstIcon);
  desktop().fingers().press(Key::ControlLeft);
  desktop().fingers().tap(Key::LetterH);
  desktop().fingers().release(Key::ControlLeft);
  desktop().screen().waitUntilNoWindow("Tap Test");
  waitUntil("a still screen", [] { return desktop().screen().isStill(); });
  EXPECT_EQ(desktop().screen().picture(firstIcon), icon);
}

}  // namespace
}  // namespace zephlin::test
