#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/time.h>
#include <sys/wait.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <vector>

#include "Tests/Support/InNewProcess.h"
#include "ZephlinCore/ChildProcess.h"

namespace {

std::atomic<int> kills = 0;

}  // namespace

/// Takes the place of the C library's, to count.
extern "C" int kill(pid_t process, int signal) {
  ++kills;
  using Kill = int (*)(pid_t, int);
  return reinterpret_cast<Kill>(::dlsym(RTLD_NEXT, "kill"))(process, signal);
}

namespace zephlin {
namespace {

using Words = std::vector<std::string>;

void handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  ::sigaction(signal, &action, nullptr);
}

/// Waits for a child that other code of the process reaps as soon as it ends.
std::string waitForReaped(const Pipe& pipe) {
  handle(SIGCHLD, [](int) {
    const int error = errno;
    ::waitpid(-1, nullptr, WNOHANG);
    errno = error;
  });
  ChildProcess child(TEST_TOOL, Words{"exit", "3"}, pipe.writeEnd);
  child.waitUntilExit();
  EXPECT_FALSE(child.isRunning());
  return std::to_string(child.reap());
}

TEST(ChildProcess, AChildThatOtherCodeHasReapedIsAnErrorAndIsNotSignalled) {
  const Pipe pipe = makePipe();
  EXPECT_EQ(test::inNewProcess([&pipe] {
              kills = 0;
              try {
                return waitForReaped(pipe);
              } catch (const std::system_error& error) {
                return error.what() + (", signalled " + std::to_string(kills));
              }
            }),
            "waitpid: No child processes, signalled 0");
}

TEST(ChildProcess, AChildThatOtherCodeHasReapedIsNotSignalledByTheDestructor) {
  const Pipe pipe = makePipe();
  kills = 0;
  {
    const ChildProcess child(TEST_TOOL, Words{"exit", "3"}, pipe.writeEnd);
    EXPECT_GT(::waitpid(-1, nullptr, 0), 0);
  }
  EXPECT_EQ(kills, 0);
}

TEST(ChildProcess, DestroyingItKillsAndReapsTheChildWhateverSignalsInterrupt) {
  Pipe pipe = makePipe();
  EXPECT_EQ(
      test::inNewProcess([&pipe] {
        handle(SIGALRM, [](int) {});
        const itimerval often{{0, 200}, {0, 200}};
        ::setitimer(ITIMER_REAL, &often, nullptr);
        for (int count = 0; count < 50; ++count) {
          const ChildProcess child(TEST_TOOL, Words{"sleep", "2000", "0", "late"}, pipe.writeEnd);
        }
        const bool reaped = ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
        return std::string(reaped ? "all reaped" : "a child is left");
      }),
      "all reaped");
  pipe.writeEnd.close();
  std::array<char, 16> text;
  EXPECT_EQ(::read(pipe.readEnd.get(), text.data(), text.size()), 0) << "not killed";
}

}  // namespace
}  // namespace zephlin
