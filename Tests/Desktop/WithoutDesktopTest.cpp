// The program where parts of a desktop are missing, and the command line, which needs none.

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

class WithoutDesktop : public DesktopTest {};

Environment withoutDisplay() {
  return {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}};
}

bool mentions(const std::string& text, const std::string& word) {
  return text.find(word) != std::string::npos;
}

TEST_F(WithoutDesktop, TheOverrideIsKeptInForceWithoutADisplay) {
  App app(desktop(), {.environment = withoutDisplay()});
  desktop().keyboards().waitUntilAllAre("0");
  const std::string plugged = desktop().keyboards().plug();
  desktop().keyboards().waitUntilAllAre("0");
  desktop().keyboards().pull(plugged);
  const std::string log = app.program().log();
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
  EXPECT_TRUE(log.starts_with("Zephlin: ")) << log;
  app.program().send(SIGTERM);
  EXPECT_EQ(app.program().waitForEnd(), 0);
}

TEST_F(WithoutDesktop, TheOverrideIsKeptInForceWithoutASessionBusAndATray) {
  desktop().stopPanel();
  App app(desktop(), {.environment = {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"}}});
  desktop().keyboards().waitUntilAllAre("0");
  const std::string plugged = desktop().keyboards().plug();
  desktop().keyboards().waitUntilAllAre("0");
  desktop().keyboards().pull(plugged);
  app.program().send(SIGTERM);
  EXPECT_EQ(app.program().waitForEnd(), 0);
}

TEST_F(WithoutDesktop, TheCommandLineNeedsNoneOfTheDesktopsLibraries) {
  const Environment environment = desktop().environment(desktop().makeHome());
  const Outcome libraries = runIn(environment, {"/usr/bin/ldd", ZEPHLIN_PROGRAM});
  const Outcome trace = runIn(environment, {"/usr/bin/strace", "-f", "-e", "trace=%file,connect",
                                            ZEPHLIN_PROGRAM, "status"});
  EXPECT_EQ(trace.status, 0) << trace.errors;
  EXPECT_TRUE(mentions(trace.errors, "/usr/bin/hidutil")) << trace.errors;
  for (const char* word : {"Qt6", "libdbus", "libxcb", "libzephlin", "system-bus", "session-bus"}) {
    EXPECT_FALSE(mentions(libraries.output, word)) << libraries.output;
    EXPECT_FALSE(mentions(trace.errors, word)) << trace.errors;
  }
}

TEST_F(WithoutDesktop, WithoutItsModuleTheExecutableNamesThePackage) {
  const std::string home = desktop().makeHome();
  const std::string alone = home + "/Zephlin";
  std::filesystem::copy(ZEPHLIN_PROGRAM, alone);
  const Outcome application = runIn(desktop().environment(home), {alone});
  EXPECT_EQ(application.status, 1);
  EXPECT_EQ(application.output, "");
  EXPECT_TRUE(mentions(application.errors, "zephlin-desktop")) << application.errors;
  EXPECT_EQ(std::count(application.errors.begin(), application.errors.end(), '\n'), 1)
      << application.errors;

  EXPECT_EQ(runIn(desktop().environment(home), {alone, "status"}).status, 0);
}

}  // namespace
}  // namespace zephlin::test
