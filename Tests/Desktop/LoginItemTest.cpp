// Starting at login, which only an application in a bundle does.

#include <filesystem>

#include "Tests/Desktop/Harness/Bundle.h"
#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

std::string entryFile(const std::string& home) {
  return home + "/.config/autostart/com.quorvenel.zephlin.desktop";
}

class LoginItem : public DesktopTest {
 protected:
  [[nodiscard]] bool isChecked(App& app) const {
    app.item().aboutToShow();
    return app.item().entry("Start at Login").isChecked();
  }

  const Bundle bundle_;
};

TEST_F(LoginItem, IsRegisteredAtTheFirstLaunch) {
  App app(desktop(), {.command = {bundle_.program()}});
  const std::string file = entryFile(app.home());
  waitUntil("the entry", [&] { return std::filesystem::exists(file); });
  EXPECT_NE(contentOf(file).find("Exec=\"" + bundle_.program() + "\""), std::string::npos)
      << contentOf(file);
  EXPECT_TRUE(app.item().entry("Start at Login").isEnabled());
  EXPECT_TRUE(isChecked(app));
}

TEST_F(LoginItem, StaysOffOnceItWasTurnedOff) {
  std::string home;
  {
    App app(desktop(), {.command = {bundle_.program()}});
    home = app.home();
    waitUntil("a checked entry", [&] { return isChecked(app); });
    app.item().choose("Start at Login");
    waitUntil("an entry without check mark", [&] { return !isChecked(app); });
    EXPECT_FALSE(std::filesystem::exists(entryFile(home)));
  }
  App next(desktop(), {.home = home, .command = {bundle_.program()}});
  next.waitForStatusLine("On. Every tap registers instantly");
  EXPECT_FALSE(isChecked(next));
  EXPECT_FALSE(std::filesystem::exists(entryFile(home)));

  next.item().choose("Start at Login");
  waitUntil("a checked entry", [&] { return isChecked(next); });
  EXPECT_TRUE(std::filesystem::exists(entryFile(home)));
}

TEST_F(LoginItem, IsRegisteredAtTheNextLaunchWhenTheFirstCouldNot) {
  const std::string home = desktop().makeHome();
  std::filesystem::create_directory(home + "/.config");
  // A file where the folder would be.
  const std::string obstacle = home + "/.config/autostart";
  std::filesystem::copy_file("/proc/self/comm", obstacle);
  {
    App app(desktop(), {.home = home, .command = {bundle_.program()}});
    app.program().waitForLog("Zephlin: could not register login item: ");
    EXPECT_FALSE(isChecked(app));
  }
  std::filesystem::remove(obstacle);
  App next(desktop(), {.home = home, .command = {bundle_.program()}});
  waitUntil("a checked entry", [&] { return isChecked(next); });
}

TEST_F(LoginItem, IsNoneForABareExecutable) {
  App app(desktop());
  app.waitForStatusLine("On. Every tap registers instantly");
  EXPECT_FALSE(isChecked(app));
  EXPECT_FALSE(std::filesystem::exists(entryFile(app.home())));
}

}  // namespace
}  // namespace zephlin::test
