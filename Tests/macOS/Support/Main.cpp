#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Tests/Support/Daemon.h"
#include "Tests/Support/Files.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::test {
namespace {

constexpr const char* runningVariable = "ZEPHLIN_ON_PRIVATE_DESKTOP";

/// Runs this program once more with a display of its own and a home for GNUstep's files: GNUstep
/// reads the environment before main.
int runOnPrivateDesktop(char** argv) {
  const XServer display;
  const TemporaryDirectory home;
  // GNUstep takes the home from the user database, and the rest from its own configuration.
  const std::string configuration = home.file("GNUstep.conf");
  writeTo(configuration, "GNUSTEP_USER_DEFAULTS_DIR=" + home.file("Defaults") +
                             "\nGNUSTEP_USER_DIR_LIBRARY=" + home.file("Library") + "\n");
  ::setenv("GNUSTEP_CONFIG_FILE", configuration.c_str(), 1);
  ::setenv("HOME", home.path().c_str(), 1);
  ::setenv("DISPLAY", (":" + display.address()).c_str(), 1);
  ::setenv(runningVariable, "1", 1);
  const pid_t child = ::fork();
  if (child == 0) {
    ::execv("/proc/self/exe", argv);
    ::_exit(127);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace
}  // namespace zephlin::test

// GNUstep keeps what it has made once; what the tests count is what Platform/macOS has made.
extern "C" const char* __asan_default_options() {
  return "detect_leaks=0";
}

int main(int argc, char** argv) {
  const bool isList = std::any_of(argv, argv + argc, [](const char* argument) {
    return std::string_view(argument).starts_with("--gtest_list_tests");
  });
  if (!isList && ::getenv(zephlin::test::runningVariable) == nullptr) {
    return zephlin::test::runOnPrivateDesktop(argv);
  }
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
