// What a person does with a pointer and keys, on every desktop.

#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

class Everyday : public DesktopTest {};

TEST_F(Everyday, TheIconIsInThePanelAndGoesWithTheApplication) {
  const Panel& panel = desktop().panel();
  App app(desktop());
  app.waitForToolTip("Zephlin: instant Caps Lock is ON");
  panel.waitForIcon();
  desktop().photograph(desktop().shell().name() + "-icon");
  EXPECT_EQ(app.quit(), 0);
  waitUntil("an empty panel", [&] { return panel.placeOfIcons().isNull(); });
}

}  // namespace
}  // namespace zephlin::test
