// The actions of the application's launcher: what its desktop file runs, and the same over D-Bus.

#include <fstream>
#include <sstream>

#include "Tests/Desktop/Harness/DesktopTest.h"
#include "Tests/Support/FakeNotifications.h"

namespace zephlin::test {
namespace {

/// The arguments in the line Exec of a group of the desktop file. They have no quotes.
std::vector<std::string> commandOf(const std::string& group) {
  std::ifstream file(DESKTOP_FILE);
  std::string line;
  while (std::getline(file, line) && line != "[" + group + "]") {
  }
  while (std::getline(file, line) && !line.starts_with("Exec=")) {
  }
  std::istringstream words(line.substr(line.find('=') + 1));
  std::vector<std::string> command;
  for (std::string word; words >> word;) {
    command.push_back(word);
  }
  command.front().insert(0, "/usr/bin/");
  return command;
}

class Launcher : public DesktopTest {
 protected:
  /// What a launcher does for a user with this home folder.
  static App choose(const std::string& action, const std::string& home) {
    return App(desktop(), {.home = home, .command = commandOf("Desktop Action " + action)});
  }
  static void activate(const std::string& action) {
    desktop().sessionBus().call({"com.quorvenel.zephlin", "/com/quorvenel/zephlin",
                                 "org.freedesktop.Application", "ActivateAction"},
                                {QString::fromStdString(action), QVariantList(), QVariantMap()});
  }
  void waitForNotification(const QString& status) {
    waitUntil("the notification " + status.toStdString(), [&] {
      return !notifications_.shown().isEmpty() &&
             notifications_.shown().first().summary == "Zephlin: " + status;
    });
  }

  FakeNotifications notifications_{QString::fromStdString(desktop().sessionBusAddress())};
};

TEST_F(Launcher, ItsActionsAskTheInstanceThatRuns) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  const auto run = [&](const std::string& action) {
    App second = choose(action, app.home());
    EXPECT_EQ(second.program().waitForEnd(), 0) << action;
  };
  run("switch-off");
  app.waitForStatusLine("Off, using your Mac's normal delay");
  desktop().keyboards().waitUntilAllAre("-1");
  EXPECT_FALSE(app.item().entry("Instant Caps Lock").isChecked());
  run("status");
  waitForNotification("Off, using your Mac's normal delay");
  run("switch-on");
  app.waitForStatusLine("On. Every tap registers instantly");
  desktop().keyboards().waitUntilAllAre("0");
  run("status");
  waitForNotification("On. Every tap registers instantly");
  EXPECT_FALSE(desktop().screen().windowTitled("Tap Test").has_value());
  run("tap-test");
  desktop().screen().waitForWindow("Tap Test");
  EXPECT_EQ(desktop().registeredItems().size(), 1);
}

TEST_F(Launcher, ItsActionsWorkOverTheBus) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  activate("switch-off");
  app.waitForStatusLine("Off, using your Mac's normal delay");
  activate("switch-on");
  app.waitForStatusLine("On. Every tap registers instantly");
  activate("status");
  waitForNotification("On. Every tap registers instantly");
  activate("no-such-action");
  activate("tap-test");
  desktop().screen().waitForWindow("Tap Test");
}

TEST_F(Launcher, ItsActionsStartTheApplicationIfItDoesNotRun) {
  const std::string home = desktop().makeHome();
  App off = choose("switch-off", home);
  off.waitForStatusLine("Off, using your Mac's normal delay");
  desktop().keyboards().waitUntilAllAre("-1");
  EXPECT_EQ(off.quit(), 0);

  App status = choose("status", home);
  waitForNotification("Off, using your Mac's normal delay");
  EXPECT_EQ(status.quit(), 0);

  App on = choose("switch-on", home);
  on.waitForStatusLine("On. Every tap registers instantly");
  EXPECT_FALSE(desktop().screen().windowTitled("Tap Test").has_value());
  EXPECT_EQ(on.quit(), 0);

  App tapTest = choose("tap-test", home);
  desktop().screen().waitForWindow("Tap Test");
  EXPECT_EQ(tapTest.quit(), 0);
}

TEST_F(Launcher, AClickOnTheStatusOpensTheTapTest) {
  App app(desktop());
  app.item();
  activate("status");
  waitForNotification("On. Every tap registers instantly");
  notifications_.click("");
  desktop().screen().waitForWindow("Tap Test");
}

TEST_F(Launcher, AnEndedApplicationLeavesNoNotification) {
  App app(desktop());
  app.item();
  activate("status");
  waitForNotification("On. Every tap registers instantly");
  EXPECT_EQ(app.quit(), 0);
  waitUntil("the notification to go", [this] { return notifications_.shown().isEmpty(); });
}

using LauncherWithoutNotifications = DesktopTest;

TEST_F(LauncherWithoutNotifications, TheStatusIsAnAlert) {
  App app(desktop());
  app.item();
  App second(desktop(), {.home = app.home(), .command = commandOf("Desktop Action status")});
  EXPECT_EQ(second.program().waitForEnd(), 0);
  desktop().screen().waitForWindow("Zephlin");
  desktop().photograph("status-alert");
  desktop().fingers().tap(Key::Return);
  desktop().screen().waitUntilNoWindow("Zephlin");
}

TEST_F(LauncherWithoutNotifications, AnUnknownOptionIsAPlainStart) {
  App app(desktop(), {.command = {"/usr/bin/Zephlin", "--unknown"}});
  app.waitForStatusLine("On. Every tap registers instantly");
  EXPECT_FALSE(desktop().screen().windowTitled("Tap Test").has_value());
}

}  // namespace
}  // namespace zephlin::test
