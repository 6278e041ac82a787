// The icon in the panel and its tool tip.

#include "Tests/Desktop/Harness/DesktopTest.h"
#include "Tests/Desktop/Harness/Sight.h"

namespace zephlin::test {
namespace {

constexpr const char* instantToolTip = "Zephlin: instant Caps Lock is ON";
constexpr const char* disabledToolTip = "Zephlin: disabled (Apple default delay)";
constexpr const char* failedToolTip =
    "Zephlin: enabled, but the fix could not be applied. Check Input Monitoring permission.";

class StatusItem : public DesktopTest {
 protected:
  /// The place of the item is a square at the beginning of the panel.
  QImage picture() {
    const QRect panel = desktop().panel().place();
    return desktop().screen().picture(QRect(panel.x(), panel.y(), panel.height(), panel.height()));
  }

  /// What the panel shows at last, when it shows something else than before.
  QImage waitForOtherThan(const QImage& before) {
    waitUntil("another icon", [&] { return picture() != before && desktop().screen().isStill(); });
    return picture();
  }
};

TEST_F(StatusItem, IsLegibleInADarkPanelAndInALightOne) {
  constexpr double legible = 4.5;
  for (const PanelStyle style : {PanelStyle::Light, PanelStyle::Dark}) {
    desktop().panel().setStyle(style);
    App app(desktop());
    app.waitForToolTip(instantToolTip);
    waitUntil("a legible icon",
              [this] { return contrastOf(picture()) > legible && desktop().screen().isStill(); });
    desktop().photograph(style == PanelStyle::Light ? "icon-light" : "icon-dark");
  }
}

TEST_F(StatusItem, IsVisibleInBothPanelsWhereItsIconsAreNotInstalled) {
  App app(desktop(), {.environment = {{"XDG_DATA_DIRS", "/usr/share"}}});
  app.waitForToolTip(instantToolTip);
  constexpr double visible = 3;
  for (const PanelStyle style : {PanelStyle::Light, PanelStyle::Dark}) {
    desktop().panel().setStyle(style);
    waitUntil("a visible icon",
              [this] { return contrastOf(picture()) > visible && desktop().screen().isStill(); });
  }
  desktop().photograph("icon-not-installed");
}

TEST_F(StatusItem, HasAnIconAndAToolTipOfItsOwnInEachState) {
  const QImage empty = picture();
  App app(desktop());
  app.waitForToolTip(instantToolTip);
  const QImage instant = waitForOtherThan(empty);

  app.item().choose("Instant Caps Lock");
  app.waitForToolTip(disabledToolTip);
  const QImage disabled = waitForOtherThan(instant);
  desktop().photograph("icon-disabled");

  desktop().hidutil().fail("the keyboards are gone");
  app.item().choose("Instant Caps Lock");
  app.waitForToolTip(failedToolTip);
  waitUntil("the warning symbol", [&] {
    return picture() != disabled && picture() != instant && picture() != empty &&
           desktop().screen().isStill();
  });
  desktop().photograph("icon-warning");
}

TEST_F(StatusItem, WarnsWhileHidutilFailsAndNoMoreAfterReapplyNow) {
  desktop().hidutil().fail("the keyboards are gone");
  App app(desktop());
  app.waitForToolTip(failedToolTip);
  app.waitForStatusLine("Couldn't turn on. Check Input Monitoring permission");
  EXPECT_TRUE(app.program().hasPrinted(
      "Zephlin: failed to apply override: hidutil exited with status 1: the keyboards are gone"));

  desktop().hidutil().recover();
  app.item().choose("Re-apply Now");
  app.waitForToolTip(instantToolTip);
  app.waitForStatusLine("On. Every tap registers instantly");
  EXPECT_TRUE(desktop().keyboards().allAre("0"));
}

TEST_F(StatusItem, ChecksTheKeyboardsWhileHidutilHasNotAnswered) {
  desktop().hidutil().hold();
  App app(desktop());
  app.waitForStatusLine("Checking…");
  desktop().hidutil().release();
  app.waitForStatusLine("On. Every tap registers instantly");
}

TEST_F(StatusItem, GoesWithTheApplication) {
  Panel& panel = desktop().panel();
  App app(desktop());
  app.item();
  panel.waitForIcon();
  EXPECT_EQ(app.quit(), 0);
  waitUntil("an empty panel", [&] { return panel.placeOfIcons().isNull(); });
}

}  // namespace
}  // namespace zephlin::test
