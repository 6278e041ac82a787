// What a person does with a pointer and keys, on every desktop.

#include "Tests/Desktop/Harness/EverydayTest.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace zephlin::test {
namespace {

class Everyday : public EverydayTest {};

class EverydayKeys : public EverydayTest {};

class EverydayToolTip : public EverydayTest {};

TEST_F(Everyday, TheIconIsInThePanelAndGoesWithTheApplication) {
  app_.waitForToolTip("Zephlin: instant Caps Lock is ON");
  desktop().panel().waitForIcon();
  photograph("icon");
  menu_.choose("Quit Zephlin");
  EXPECT_EQ(app_.program().waitForEnd(), 0);
  waitUntil("an empty panel", [] { return desktop().panel().placeOfIcons().isNull(); });
}

TEST_F(Everyday, TheMenuOpensAtThePanelWithEitherButton) {
  app_.waitForStatusLine(onLine);
  constexpr int farthest = 8;
  const QRect panel = desktop().panel().place().adjusted(0, -farthest, 0, farthest);
  for (const int button : {leftButton, rightButton}) {
    menu_.open(button);
    EXPECT_TRUE(panel.intersects(menu_.place())) << button;
    EXPECT_TRUE(windows().empty()) << windows().front().title;
    photograph(button == leftButton ? "menu" : "menu-after-right-click");
    menu_.close();
  }
}

TEST_F(Everyday, TheMenuSwitchesStartAtLogin) {
  const std::string file = app_.home() + "/.config/autostart/com.quorvenel.zephlin.desktop";
  waitUntil("the entry for logins", [&] { return std::filesystem::exists(file); });
  menu_.choose("Start at Login");
  waitUntil("no entry for logins", [&] { return !std::filesystem::exists(file); });
  menu_.choose("Start at Login");
  waitUntil("the entry for logins", [&] { return std::filesystem::exists(file); });
}

TEST_F(Everyday, TheMenuSwitchesOffAndOnAndReapplies) {
  desktop().keyboards().waitUntilAllAre("0");
  menu_.choose("Instant Caps Lock");
  desktop().keyboards().waitUntilAllAre("-1");
  app_.waitForStatusLine(offLine);
  menu_.choose("Instant Caps Lock");
  desktop().keyboards().waitUntilAllAre("0");
  app_.waitForStatusLine(onLine);
  desktop().keyboards().setAll(75);
  menu_.choose("Re-apply Now");
  desktop().keyboards().waitUntilAllAre("0");
}

TEST_F(Everyday, TheMenuOpensWindowsThatEscapeCloses) {
  const std::vector<std::pair<std::string, std::string>> windowsOfEntries{
      {"Tap Test…", "Tap Test"}, {"Check for Updates…", "Zephlin"}, {"About Zephlin", "Zephlin"}};
  for (const auto& [entry, title] : windowsOfEntries) {
    menu_.choose(entry);
    waitForActiveWindow(title);
    photograph(title);
    closeWindow();
  }
}

TEST_F(EverydayKeys, ChooseFromTheMenu) {
  desktop().keyboards().waitUntilAllAre("0");
  menu_.open(rightButton);
  desktop().fingers().tap(Key::Down);
  desktop().fingers().tap(Key::Return);
  desktop().keyboards().waitUntilAllAre("-1");
  menu_.open(rightButton);
  desktop().fingers().tap(Key::Escape);
  menu_.waitUntilClosed();
}

TEST_F(EverydayToolTip, IsALineThatShowsWhileThePointerIsOnTheIcon) {
  app_.waitForToolTip("Zephlin: instant Caps Lock is ON");
  EXPECT_EQ(rowsOfText(desktop().screen().picture(menu_.waitForToolTip())).size(), 1U);
  photograph("tool-tip");
}

}  // namespace
}  // namespace zephlin::test
