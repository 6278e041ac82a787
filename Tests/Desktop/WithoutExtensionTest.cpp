// GNOME as it comes, without an extension for tray icons.

#include "Tests/Desktop/Harness/DesktopTest.h"
#include "Tests/Desktop/Harness/Sight.h"

namespace zephlin::test {
namespace {

class WithoutExtension : public DesktopTest {
 protected:
  WithoutExtension() {
    desktop().stopPanel();
    waitUntil("a still screen", [] { return desktop().screen().isStill(); });
  }
};

TEST_F(WithoutExtension, AClickOnTheNotificationOpensTheTapTest) {
  const QImage before = desktop().screen().picture();
  const App app(desktop());
  QRect notification;
  waitUntil("a notification", [&] {
    notification = largestChange(before, desktop().screen().picture());
    return notification.width() > 200 && notification.height() > 50;
  });
  desktop().photographNow("gnome-notification");
  desktop().fingers().click(notification.center());
  waitForActiveWindow("Tap Test");
}

}  // namespace
}  // namespace zephlin::test
