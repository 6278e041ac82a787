// The windows for users of large text.

#include "Tests/Desktop/Harness/Accessibility.h"
#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

struct Setting {
  std::string name;
  double scale;
  Environment environment;
};

class LargeText : public DesktopTest {
 protected:
  /// Opens the tap test and About, and takes their pictures.
  static void expectWindowsToGrow(const Setting& setting) {
    App app(desktop(), {.environment = merged(accessible(), setting.environment)});
    const Accessibility reader(desktop().sessionBus());
    const Screen& screen = desktop().screen();
    app.item().choose("Tap Test…");
    const xcb_window_t tapTest = screen.waitForWindow("Tap Test");
    reader.waitForName(app.program().id(), "Waiting for taps…");
    desktop().photograph("tap-test-" + setting.name);
    const QRect place = screen.placeOf(tapTest);
    EXPECT_NEAR(place.width(), 408 * setting.scale, 50) << setting.name;
    EXPECT_TRUE(screen.picture().rect().contains(place)) << setting.name;
    screen.close(tapTest);
    screen.waitUntilNoWindow("Tap Test");
    app.item().choose("About Zephlin");
    const xcb_window_t about = screen.waitForWindow("Zephlin");
    desktop().photograph("about-" + setting.name);
    EXPECT_TRUE(screen.picture().rect().contains(screen.placeOf(about))) << setting.name;
  }
};

TEST_F(LargeText, WindowsGrowWithTheResolutionOfFonts) {
  expectWindowsToGrow({"font-dpi-144", 1.5, {{"QT_FONT_DPI", "144"}}});
  expectWindowsToGrow({"font-dpi-192", 1.9, {{"QT_FONT_DPI", "192"}}});
}

TEST_F(LargeText, WindowsGrowWithTheScaleOfTheScreen) {
  expectWindowsToGrow({"scale-1.5", 1.5, {{"QT_SCALE_FACTOR", "1.5"}}});
  expectWindowsToGrow({"scale-2", 1.9, {{"QT_SCALE_FACTOR", "2"}}});
}

}  // namespace
}  // namespace zephlin::test
