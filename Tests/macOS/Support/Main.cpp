#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

#include "Support/PrivateDesktop.h"

namespace {

constexpr const char* runningVariable = "ZEPHLIN_ON_PRIVATE_DESKTOP";

/// Runs this program once more, since GNUstep reads the environment before main.
int runOnPrivateDesktop(char** argv) {
  const zephlin::test::PrivateDesktop desktop;
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

// GNUstep keeps what it has made once; what the tests count is what Platform/macOS has made.
extern "C" const char* __asan_default_options() {
  return "detect_leaks=0";
}

int main(int argc, char** argv) {
  const bool isList = std::any_of(argv, argv + argc, [](const char* argument) {
    return std::string_view(argument).starts_with("--gtest_list_tests");
  });
  if (!isList && ::getenv(runningVariable) == nullptr) {
    return runOnPrivateDesktop(argv);
  }
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
