// What a person sees in the panel.

#include <algorithm>
#include <vector>

#include "Tests/Desktop/Harness/DesktopTest.h"
#include "Tests/Desktop/Harness/PanelMenu.h"
#include "Tests/Desktop/Harness/Sight.h"

namespace zephlin::test {
namespace {

class EverydayIcon : public DesktopTest {
 protected:
  /// What the panel shows in the application's place, once that is legible and none of the others.
  static QImage waitForOtherThan(const std::vector<QImage>& others) {
    constexpr double legible = 3;
    QImage icon;
    waitUntil("another legible icon", [&] {
      icon = pictureOfIcons();
      return !icon.isNull() && contrastOf(icon) > legible &&
             std::find(others.begin(), others.end(), icon) == others.end() &&
             desktop().screen().isStill();
    });
    return icon;
  }

 private:
  /// With a little of the panel around them; empty without icons.
  static QImage pictureOfIcons() {
    constexpr int around = 2;
    const QRect icons = desktop().panel().placeOfIcons();
    return icons.isNull()
               ? QImage()
               : desktop().screen().picture(icons.adjusted(-around, -around, around, around)
                                                .intersected(desktop().panel().place()));
  }
};

TEST_F(EverydayIcon, IsLegibleAndADifferentOneInEachStateInEachStyleOfThePanel) {
  for (const PanelStyle style : desktop().panel().styles()) {
    desktop().panel().setStyle(style);
    App app(desktop());
    PanelMenu menu(desktop(), app);
    std::vector<QImage> icons;
    const auto look = [&](const std::string& state) {
      icons.push_back(waitForOtherThan(icons));
      desktop().photograph(desktop().shell().name() +
                           (style == PanelStyle::Light ? "-light-" : "-dark-") + state);
    };
    app.waitForToolTip("Zephlin: instant Caps Lock is ON");
    look("on");
    menu.choose("Instant Caps Lock");
    app.waitForToolTip("Zephlin: disabled (Apple default delay)");
    look("off");
    desktop().hidutil().fail("the keyboards are gone");
    menu.choose("Instant Caps Lock");
    look("warning");
    desktop().hidutil().recover();
  }
}

}  // namespace
}  // namespace zephlin::test
