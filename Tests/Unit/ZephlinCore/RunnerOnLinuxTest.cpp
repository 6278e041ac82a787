#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>

#include "Tests/Support/InNewProcess.h"
#include "ZephlinCore/ChildProcessRunner.h"

namespace zephlin {
namespace {

/// Above all that a run opens.
constexpr int descriptorCount = 32;

bool isInheritable(int descriptor) {
  const int flags = ::fcntl(descriptor, F_GETFD);
  return flags != -1 && (flags & FD_CLOEXEC) == 0;
}

// A descriptor that is made close-on-exec after it was opened can be in a child that another thread
// has launched in between. It then holds the pipe open, and the run waits for that child too.
TEST(CloseOnExec, ARunHasNoInheritableDescriptorAtAnyTime) {
  // UndefinedBehaviorSanitizer opens a pipe when it first meets a class with virtual functions; the
  // watchdog's thread has one. So the first run that needs a watchdog comes before the watcher.
  const std::array<std::string, 1> endAfterWatchdogStarts = {"watch-parent"};
  runChildProcess(TEST_TOOL, endAfterWatchdogStarts, std::chrono::seconds(60));
  std::array<bool, descriptorCount> usual{};
  for (int descriptor = 0; descriptor < descriptorCount; ++descriptor) {
    usual[static_cast<std::size_t>(descriptor)] = isInheritable(descriptor);
  }
  std::atomic<bool> done = false;
  std::atomic<int> inheritable = 0;
  std::thread watcher([&] {
    while (!done) {
      for (int descriptor = 0; descriptor < descriptorCount; ++descriptor) {
        inheritable += isInheritable(descriptor) && !usual[static_cast<std::size_t>(descriptor)];
      }
    }
  });
  const std::array<std::string, 2> arguments = {"exit", "0"};
  for (int run = 0; run < 300; ++run) {
    EXPECT_EQ(runChildProcess(TEST_TOOL, arguments, std::chrono::seconds(60)).terminationStatus, 0);
  }
  done = true;
  watcher.join();
  EXPECT_EQ(inheritable, 0);
}

TEST(ChildProcessRunner, NoSignalOfTheProcessIsHandledOnTheWatchdogsThread) {
  // In a process that has no other threads.
  EXPECT_EQ(
      test::inNewProcess([] {
        const std::array<std::string, 1> arguments = {"watch-parent"};
        return std::to_string(
            runChildProcess(TEST_TOOL, arguments, std::chrono::seconds(60)).terminationStatus);
      }),
      "0");
}

}  // namespace
}  // namespace zephlin
