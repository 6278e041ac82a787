// A desktop that has no tray.

#include "Tests/Desktop/Harness/DesktopTest.h"
#include "Tests/Support/FakeNotifications.h"

namespace zephlin::test {
namespace {

class WithoutTray : public DesktopTest {
 protected:
  WithoutTray() { desktop().stopPanel(); }

  void waitForNotification(const QString& status) {
    waitUntil("the notification " + status.toStdString(), [&] {
      return notifications_.shown().size() == 1 &&
             notifications_.shown().first().summary == "Zephlin: " + status;
    });
  }

  FakeNotifications notifications_{QString::fromStdString(desktop().sessionBusAddress())};
};

TEST_F(WithoutTray, ANotificationSaysWhatIsOnAndHowToReachItAndConfirmsASwitch) {
  App app(desktop());
  waitForNotification("On. Every tap registers instantly");
  EXPECT_TRUE(notifications_.shown().first().body.contains("Start Zephlin again"));
  EXPECT_EQ(notifications_.shown().first().icon, "com.quorvenel.zephlin");
  for (const auto& [option, status] :
       {std::pair("--switch-off", "Off, using your Mac's normal delay"),
        std::pair("--switch-on", "On. Every tap registers instantly")}) {
    App second(desktop(), {.home = app.home(), .command = {"/usr/bin/Zephlin", option}});
    EXPECT_EQ(second.program().waitForEnd(), 0);
    waitForNotification(status);
  }
  notifications_.click("");
  waitForActiveWindow("Tap Test");
}

TEST_F(WithoutTray, ATrayThatComesTakesTheNotificationAway) {
  App app(desktop());
  waitForNotification("On. Every tap registers instantly");
  desktop().panel();
  waitUntil("the notification to go", [this] { return notifications_.shown().isEmpty(); });
  app.waitForStatusLine("On. Every tap registers instantly");
}

TEST_F(WithoutTray, NothingIsSaidToAUserWhoSeesItsWindow) {
  App app(desktop(), {.environment = {{"ZEPHLIN_PREVIEW", "taptest"}}});
  waitForActiveWindow("Tap Test");
  const double since = monotonicSeconds();
  waitUntil("some time to pass", [&] { return monotonicSeconds() > since + 8; });
  EXPECT_EQ(notifications_.timesShown(), 0);
}

}  // namespace
}  // namespace zephlin::test
