// Options of the application's toolkit. Without a display, the application says so once it has
// started.

#include <gtest/gtest.h>

#include <cstdlib>

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin {
namespace {

TEST(ApplicationOptions, AnOptionThatTheToolkitKnowsJustStartsTheApplication) {
  for (const char* option : {"-platform", "--platform"}) {
    const test::TemporaryDirectory directory;
    test::TestProcess application(
        {WITH_PRIVATE_BIN, directory.path().string(), ZEPHLIN, option, "nonsense"}, [&directory] {
          for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM",
                                   "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) {
            ::unsetenv(name);
          }
          ::setenv("HOME", directory.path().c_str(), 1);
          ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);
        });
    EXPECT_NO_THROW(application.waitForErrors("Zephlin: no display")) << option;
  }
}

}  // namespace
}  // namespace zephlin
