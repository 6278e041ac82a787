#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>
#include <system_error>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Tests/Support/InNewProcess.h"
#include "ZephlinCore/ChildProcessRunner.h"

namespace zephlin {
namespace {

using Seconds = std::chrono::duration<double>;
using test::inNewProcess;

/// For children that end by themselves.
constexpr Seconds ample{60.0};
/// For children that do not.
constexpr Seconds brief{0.3};

ChildProcessResult run(const std::vector<std::string>& arguments, Seconds timeLimit = ample) {
  return runChildProcess(TEST_TOOL, arguments, timeLimit);
}

/// Runs a child that must not end by itself, and checks that it got all of its time.
ChildProcessResult runPastItsTime(const std::vector<std::string>& arguments) {
  const auto begin = std::chrono::steady_clock::now();
  ChildProcessResult result = run(arguments, brief);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, brief);
  return result;
}

std::string describe(const ChildProcessResult& result) {
  return (result.timedOut ? "timed out " : "ended ") + std::to_string(result.terminationStatus) +
         " " + result.output.value_or("(too long)");
}

std::string runExit3() {
  return describe(run({"exit", "3", "text"}));
}

/// Handles a signal in this process, whose system calls it interrupts.
void catchSignal(int signal, void (*handler)(int), int flags = 0) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  ::sigaction(signal, &action, nullptr);
}

void ignore(int /*signal*/) {}

/// 0 for a directory that does not exist: only Linux lists threads.
std::ptrdiff_t entriesOf(const char* directory) {
  std::error_code error;
  return std::distance(std::filesystem::directory_iterator(directory, error), {});
}

/// What a run could leave behind in this process.
std::string leftovers() {
  const bool hasChild = ::waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
  return std::to_string(entriesOf("/dev/fd")) + " descriptors, " +
         std::to_string(entriesOf("/proc/self/task")) + " threads" + (hasChild ? ", a child" : "");
}

/// Checks that its life leaves nothing behind.
class NothingIsLeft {
 public:
  NothingIsLeft() {
    std::thread([] {}).join();  // A sanitizer may start one of its own with the first.
    before_ = leftovers();
  }
  NothingIsLeft(const NothingIsLeft&) = delete;
  NothingIsLeft& operator=(const NothingIsLeft&) = delete;
  ~NothingIsLeft() {
    // The kernel lists a joined thread for an instant more.
    for (int attempt = 0; attempt < 1000 && leftovers() != before_; ++attempt) {
      ::usleep(1000);
    }
    EXPECT_EQ(leftovers(), before_);
  }

 private:
  std::string before_;
};

TEST(ChildProcessRunner, ExitStatusAndTextAreReturned) {
  EXPECT_EQ(describe(run({"exit", "0"})), "ended 0 ");
  EXPECT_EQ(describe(run({"exit", "3", "one line\n"})), "ended 3 one line\n");
  EXPECT_EQ(describe(run({"exit", "255"})), "ended 255 ");
}

TEST(ChildProcessRunner, StandardOutputAndStandardErrorArriveInOneStream) {
  EXPECT_EQ(run({"merged"}).output, "first\nsecond\nthird\n");
}

TEST(ChildProcessRunner, ArgumentsArriveAsTheyAre) {
  EXPECT_EQ(run({"echo-arguments", "", "a b", "\"'$HOME`*\\", "{\"a\":1}"}).output,
            "echo-arguments\n\na b\n\"'$HOME`*\\\n{\"a\":1}\n");
}

TEST(ChildProcessRunner, ASignalReportsItsNumberAsTheStatus) {
  for (const int signal : {SIGTERM, SIGKILL, SIGSEGV, SIGPIPE}) {
    EXPECT_EQ(describe(run({"die-by", std::to_string(signal), "last words"})),
              "ended " + std::to_string(signal) + " last words");
  }
}

TEST(ChildProcessRunner, AChildThatDoesNotEndIsKilledAtTheLimit) {
  for (const auto& arguments : std::vector<std::vector<std::string>>{
           {"hang", "some text"},  // Ignores every signal that can be ignored.
           {"stop"},
           {"close-output", "60000"},
           {"flood"},
       }) {
    const ChildProcessResult result = runPastItsTime(arguments);
    EXPECT_TRUE(result.timedOut) << arguments[0];
    EXPECT_EQ(result.terminationStatus, SIGKILL) << arguments[0];
  }
}

TEST(ChildProcessRunner, OutputIsKeptWholeOrNotAtAll) {
  EXPECT_EQ(run({"flood", std::to_string(maximumChildOutputBytes)}).output.value().size(),
            maximumChildOutputBytes);
  for (const std::size_t size : {maximumChildOutputBytes + 1, 4 * maximumChildOutputBytes}) {
    EXPECT_EQ(describe(run({"flood", std::to_string(size)})), "ended 0 (too long)");
  }
}

TEST(ChildProcessRunner, AChildsOwnChildThatHoldsThePipeChangesNothing) {
  for (const auto& [ending, timedOut, status] :
       {std::tuple("7", false, 7), std::tuple("hang", true, SIGKILL)}) {
    const ChildProcessResult result = runPastItsTime({"leave-grandchild", ending});
    EXPECT_EQ(result.timedOut, timedOut);
    EXPECT_EQ(result.terminationStatus, status);
    const pid_t grandchild = std::stoi(result.output.value());
    EXPECT_EQ(::kill(grandchild, SIGKILL), 0);
  }
}

TEST(ChildProcessRunner, ACallerThatStandsStillPastTheLimitGetsWhatAFinishedChildPrinted) {
  EXPECT_EQ(inNewProcess([] {
              catchSignal(SIGALRM, [](int) { ::usleep(2'500'000); });
              const itimerval once{{0, 0}, {0, 100'000}};
              ::setitimer(ITIMER_REAL, &once, nullptr);
              const std::vector<std::string> script = {"-c", "sleep 0.3; echo text"};
              return describe(runChildProcess("/bin/sh", script, Seconds(2)));
            }),
            "ended 0 text\n");
}

TEST(ChildProcessRunner, AChildThatExitsAtTheDeadlineEitherEndedOrTimedOut) {
  for (int milliseconds = 20; milliseconds < 60; ++milliseconds) {
    const ChildProcessResult result =
        run({"sleep", std::to_string(milliseconds), "5"}, Seconds(0.040));
    if (!result.timedOut) {
      EXPECT_EQ(result.terminationStatus, 5);
    }
  }
}

TEST(ChildProcessRunner, AnExecutableThatCannotBeLaunchedIsThePlatformsError) {
  const NothingIsLeft nothingIsLeft;
  for (const auto& [path, error] : {
           std::pair("/nonexistent/hidutil", "No such file or directory"),
           std::pair("true", "No such file or directory"),  // PATH is not searched.
           std::pair("/", "Permission denied"),
           std::pair("/etc/passwd", "Permission denied"),  // Not an executable.
       }) {
    try {
      static_cast<void>(runChildProcess(path, {}, ample));
      ADD_FAILURE() << path;
    } catch (const std::system_error& thrown) {
      EXPECT_EQ(thrown.what(), std::string(path) + ": " + error);
    }
  }
}

TEST(ChildProcessRunner, WithoutDescriptorsToSpareItFailsAndLeavesNothing) {
  const NothingIsLeft nothingIsLeft;
  const std::string text = inNewProcess([] {
    // UndefinedBehaviorSanitizer needs a pipe to check a class the first time it is used.
    static_cast<void>(std::system_error(EMFILE, std::generic_category(), ""));
    rlimit usual{};
    ::getrlimit(RLIMIT_NOFILE, &usual);
    const rlimit none{4, usual.rlim_max};  // 0 to 2 are open, and 3 is the pipe to the test.
    ::setrlimit(RLIMIT_NOFILE, &none);
    try {
      return runExit3();
    } catch (const std::system_error& error) {
      ::setrlimit(RLIMIT_NOFILE, &usual);
      return std::string(error.what());
    }
  });
  EXPECT_EQ(text, "pipe: Too many open files");
}

TEST(ChildProcessRunner, ManyRunsLeaveTheProcessAsItWas) {
  const NothingIsLeft nothingIsLeft;
  for (int count = 0; count < MANY_RUNS; ++count) {
    ASSERT_EQ(run({"exit", "4"}).terminationStatus, 4);
  }
  for (int count = 0; count < 3; ++count) {
    static_cast<void>(run({"hang"}, Seconds(0.01)));
  }
}

TEST(ChildProcessRunner, WorksWithTheStandardDescriptorsClosed) {
  // Every combination, because a pipe may get the number of any of them.
  for (unsigned closed = 0; closed < 8; ++closed) {
    EXPECT_EQ(inNewProcess([closed] {
                for (unsigned descriptor = 0; descriptor < 3; ++descriptor) {
                  if ((closed >> descriptor & 1U) != 0) {
                    ::close(static_cast<int>(descriptor));
                  }
                }
                return runExit3();
              }),
              "ended 3 text");
  }
}

TEST(ChildProcessRunner, WhatIsPrintedWhileTheStandardDescriptorsAreClosedIsInNoPipe) {
  EXPECT_EQ(inNewProcess([] {
              for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
                ::close(descriptor);
              }
              const Pipe pipe = makePipe();
              const int lower = std::min(pipe.readEnd.get(), pipe.writeEnd.get());
              return std::string(lower > STDERR_FILENO ? "above" : "among them");
            }),
            "above");
}

TEST(ChildProcessRunner, WorksWhereTheSystemReapsChildren) {
  for (void (*const letTheSystemReap)() : {
           +[] { ::signal(SIGCHLD, SIG_IGN); },
           +[] { catchSignal(SIGCHLD, ignore, SA_NOCLDWAIT); },
       }) {
    EXPECT_EQ(inNewProcess([letTheSystemReap] {
                letTheSystemReap();
                return runExit3();
              }),
              "ended 3 text");
  }
}

TEST(ChildProcessRunner, WorksWithEverySignalBlockedAndWithSigpipeIgnored) {
  EXPECT_EQ(inNewProcess([] {
              sigset_t all;
              sigfillset(&all);
              ::sigprocmask(SIG_BLOCK, &all, nullptr);
              ::signal(SIGPIPE, SIG_IGN);
              return runExit3() + ", " + describe(run({"hang"}, brief));
            }),
            "ended 3 text, timed out 9 ");
}

TEST(ChildProcessRunner, WorksWhileSignalsInterruptTheCaller) {
  EXPECT_EQ(inNewProcess([] {
              catchSignal(SIGALRM, ignore);
              const itimerval everyMillisecond{{0, 1000}, {0, 1000}};
              ::setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
              return describe(run({"sleep", "100", "6"})) + describe(run({"hang"}, brief)) +
                     describe(run({"close-output", "3000"}, brief));
            }),
            "ended 6 timed out 9 timed out 9 ");
}

TEST(ChildProcessRunner, TheChildInheritsNoMoreThanItShould) {
  const std::string text = inNewProcess([] {
    for (const int signal : {SIGPIPE, SIGTERM, SIGUSR1, NSIG - 1}) {
      ::signal(signal, SIG_IGN);
    }
    sigset_t some;
    sigemptyset(&some);
    sigaddset(&some, SIGHUP);
    sigaddset(&some, NSIG - 2);
    ::sigprocmask(SIG_BLOCK, &some, nullptr);
    const int open = ::open("/dev/null", O_RDONLY);
    ::dup2(open, 3);
    ::dup2(open, 150);
    ::dup2(open, 5000);
    ::setenv("TEST_MARKER", "a value", 1);
    if (::chdir("/usr") == -1) {
      return std::string("no /usr");
    }
    Pipe input = makePipe();
    ::dup2(input.readEnd.get(), STDIN_FILENO);
    const ssize_t written = ::write(input.writeEnd.get(), "typed", 5);
    input.writeEnd.close();
    return run({"describe"}).output.value() + std::to_string(written);
  });
  EXPECT_EQ(text, "argument 0: " TEST_TOOL
                  "\n"
                  "descriptors: 0 1 2\n"
                  "blocked:\n"
                  "ignored:\n"
                  "directory: /usr\n"
                  "marker: a value\n"
                  "input: typed\n"
                  "5");
}

TEST(ChildProcessRunner, TheCallersOwnSignalMaskStays) {
  const auto isBlocked = [](int signal) {
    sigset_t mask;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, signal);
  };
  for (int signal = 1; signal < NSIG; ++signal) {
    const int before = isBlocked(signal);
    static_cast<void>(run({"exit", "0"}));
    EXPECT_EQ(isBlocked(signal), before);
  }
}

TEST(ChildProcessRunner, SixtyFourThreadsDoNotDisturbOneAnother) {
  constexpr int threadCount = 64;
  const NothingIsLeft nothingIsLeft;
  std::atomic<int> wrong = 0;
  const auto work = [&wrong](int number) {
    const std::string text = "thread " + std::to_string(number) + "\n";
    for (int round = 0; round < 5; ++round) {
      wrong += describe(run({"exit", std::to_string(number), text})) !=
               "ended " + std::to_string(number) + " " + text;
      // One that holds on to a descriptor of another would keep that one waiting.
      wrong += number % 8 == 0 && !run({"hang"}, Seconds(0.05)).timedOut;
      const std::string description = run({"describe"}).output.value();
      wrong += description.find("descriptors: 0 1 2\n") == std::string::npos;
    }
  };
  std::vector<std::thread> threads;
  for (int number = 0; number < threadCount; ++number) {
    threads.emplace_back(work, number);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace zephlin
