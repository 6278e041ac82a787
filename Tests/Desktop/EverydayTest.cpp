// What a person does with a pointer and keys, on every desktop.

#include "Tests/Desktop/Harness/EverydayTest.h"

#include <string>
#include <utility>
#include <vector>

namespace zephlin::test {
namespace {

class Everyday : public EverydayTest {};

TEST_F(Everyday, TheIconIsInThePanelAndGoesWithTheApplication) {
  app_.waitForToolTip("Zephlin: instant Caps Lock is ON");
  desktop().panel().waitForIcon();
  photograph("icon");
  menu_.choose("Quit Zephlin");
  EXPECT_EQ(app_.program().waitForEnd(), 0);
  waitUntil("an empty panel", [] { return desktop().panel().placeOfIcons().isNull(); });
}

TEST_F(Everyday, TheMenuOpensAtThePanel) {
  app_.waitForStatusLine(onLine);
  menu_.open(rightButton);
  constexpr int farthest = 8;
  const QRect panel = desktop().panel().place().adjusted(0, -farthest, 0, farthest);
  EXPECT_TRUE(panel.intersects(menu_.place()));
  EXPECT_TRUE(windows().empty()) << windows().front().title;
  photograph("menu");
  menu_.close();
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

}  // namespace
}  // namespace zephlin::test
