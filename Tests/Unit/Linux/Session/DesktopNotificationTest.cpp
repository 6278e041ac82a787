#include <gtest/gtest.h>

#include <optional>

#include "Platform/Linux/Session/DesktopNotification.h"
#include "Tests/Support/FakeNotifications.h"
#include "Tests/Support/PrivateDesktop.h"
#include "Tests/Support/QtLoop.h"

namespace zephlin::test {
namespace {

const auto* const environment = ::testing::AddGlobalTestEnvironment(
    new PrivateDesktop(PrivateDesktop::SessionBus::Present, PrivateDesktop::Application::Present));

class DesktopNotificationTest : public ::testing::Test {
 protected:
  DesktopNotificationTest() { QGuiApplication::setDesktopFileName("com.quorvenel.zephlin"); }

  void show(const QString& body) {
    notification_->show({.summary = "Zephlin", .body = body, .action = "Tap Test"},
                        [this] { ++failures_; });
  }
  /// The desktop has answered all that it was asked before.
  void settle() { runLoopFor(std::chrono::milliseconds(100)); }

  QStringList clicks_;
  int failures_ = 0;
  std::optional<DesktopNotification> notification_{
      std::in_place, [this](const QString& token) { clicks_.append(token); }};
};

TEST_F(DesktopNotificationTest, ShowsWhatItIsGivenWithTheApplicationsNameAndIcon) {
  const FakeNotifications desktop;
  show("On");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 1; }));
  const ShownNotification& shown = desktop.shown().first();
  EXPECT_EQ(shown.application, "Zephlin");
  EXPECT_EQ(shown.icon, "com.quorvenel.zephlin");
  EXPECT_EQ(shown.hints.value("desktop-entry"), "com.quorvenel.zephlin");
  EXPECT_EQ(shown.summary, "Zephlin");
  EXPECT_EQ(shown.body, "On");
  EXPECT_EQ(shown.actions, QStringList({"default", "Tap Test"}));
}

TEST_F(DesktopNotificationTest, OffersNoActionWhereADesktopHasNone) {
  const FakeNotifications desktop(sessionBusAddress(), {"body"});
  show("On");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 1; }));
  EXPECT_EQ(desktop.shown().first().actions, QStringList());
}

TEST_F(DesktopNotificationTest, TheNextTakesThePlaceOfTheOneThatIsShown) {
  FakeNotifications desktop;
  show("On");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 1; }));
  settle();
  show("Off");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 2; }));
  EXPECT_EQ(desktop.shown().size(), 1);
  EXPECT_EQ(desktop.shown().first().body, "Off");
  desktop.dismiss();
  settle();
  show("On");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 3; }));
  EXPECT_EQ(desktop.shown().firstKey(), 2U);
}

TEST_F(DesktopNotificationTest, OfTwoAtOnceTheLastIsShown) {
  const FakeNotifications desktop;
  show("On");
  show("Off");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() > 0; }));
  settle();
  EXPECT_EQ(desktop.shown().size(), 1);
  EXPECT_EQ(desktop.shown().first().body, "Off");
}

TEST_F(DesktopNotificationTest, AClickIsReportedWithItsToken) {
  FakeNotifications desktop;
  show("On");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 1; }));
  settle();
  desktop.click("a token");
  ASSERT_TRUE(eventually([&] { return !clicks_.isEmpty(); }));
  EXPECT_EQ(clicks_, QStringList("a token"));
}

TEST_F(DesktopNotificationTest, AClickOnAnotherProgramsIsNotReported) {
  FakeNotifications desktop;
  show("On");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 1; }));
  settle();
  Q_EMIT desktop.ActionInvoked(desktop.shown().firstKey() + 1, "default");
  settle();
  EXPECT_EQ(clicks_, QStringList());
}

TEST_F(DesktopNotificationTest, CanBeWithdrawn) {
  const FakeNotifications desktop;
  show("On");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 1; }));
  settle();
  notification_->withdraw();
  EXPECT_TRUE(eventually([&] { return desktop.shown().isEmpty(); }));
}

TEST_F(DesktopNotificationTest, CanBeWithdrawnBeforeItIsShown) {
  const FakeNotifications desktop;
  show("On");
  notification_->withdraw();
  settle();
  EXPECT_EQ(desktop.timesShown(), 0);
}

TEST_F(DesktopNotificationTest, CanBeWithdrawnWhileTheDesktopIsAboutToShowIt) {
  const FakeNotifications desktop;
  show("On");
  // The desktop is this thread: it has shown the notification, and its answer is on the way.
  ASSERT_TRUE(eventually([&] {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    return desktop.timesShown() == 1;
  }));
  notification_->withdraw();
  EXPECT_TRUE(eventually([&] { return desktop.shown().isEmpty(); }));
}

TEST_F(DesktopNotificationTest, GoesWithItsOwner) {
  const FakeNotifications desktop;
  show("On");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 1; }));
  settle();
  notification_.reset();
  EXPECT_TRUE(eventually([&] { return desktop.shown().isEmpty(); }));
}

TEST_F(DesktopNotificationTest, FailsWithoutADesktopThatHasNotifications) {
  show("On");
  ASSERT_TRUE(eventually([this] { return failures_ == 1; }));
  // The next one is for a desktop that has them meanwhile.
  const FakeNotifications desktop;
  show("On");
  ASSERT_TRUE(eventually([&] { return desktop.timesShown() == 1; }));
  EXPECT_EQ(failures_, 1);
}

}  // namespace
}  // namespace zephlin::test
