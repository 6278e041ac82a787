// The command line where hidutil, the standard descriptors, signals or the application's module are
// not as usual.

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>

#include "Tests/CLI/CommandLineFixture.h"

namespace zephlin {
namespace {

TEST_F(CommandLineTest, OnATerminalTheUnknownWordIsAboveTheUsageText) {
  termios raw{};
  ::cfmakeraw(&raw);
  int screen = -1;
  int terminal = -1;
  ASSERT_EQ(::openpty(&screen, &terminal, nullptr, &raw, nullptr), 0);
  prepare_ = [terminal] {
    ::dup2(terminal, STDOUT_FILENO);
    ::dup2(terminal, STDERR_FILENO);
  };
  EXPECT_EQ(zephlin({"x"}).status, 2);
  ::close(terminal);
  std::string shown;
  std::array<char, 4096> buffer;
  for (ssize_t count = 0; (count = ::read(screen, buffer.data(), buffer.size())) > 0;) {
    shown.append(buffer.data(), static_cast<std::size_t>(count));
  }
  ::close(screen);
  EXPECT_EQ(shown, std::string("unknown command: x\n\n") + usage_);
}

// Seen by the error where the application's module is not installed.
TEST_F(CommandLineTest, NoArgumentAndEveryUnknownOptionStartTheApplication) {
  constexpr const char* noApplication =
      "Zephlin: the menu bar app is not installed; install the package zephlin-desktop\n";
  program_ = directory_.path() / "Zephlin";
  std::filesystem::copy_file(ZEPHLIN, program_);
  expect({}, 1, "", noApplication);
  for (const char* word : {"-", "--", "-x", "--status", "-H", "--Help", "-NSDocument"}) {
    expect({word}, 1, "", noApplication);
    expect({word, "status"}, 1, "", noApplication);
  }
}

TEST_F(CommandLineTest, AModuleThatCannotBeLoadedIsReported) {
  program_ = directory_.path() / "Zephlin";
  std::filesystem::copy_file(ZEPHLIN, program_);
  const auto module = directory_.path() / "libzephlin-desktop.so";
  std::ofstream(module) << "no library";
  expect({}, 1, "",
         "Zephlin: cannot load the menu bar app; reinstall the package zephlin-desktop: " +
             module.string() + ": file too short\n");
}

TEST_F(CommandLineTest, ASignalThatEndsTheToolIsItsStatus) {
  let("die-by 15 bye");
  expect({"status"}, 1, "", "status failed: hidutil exited with status 15: bye\n");
}

TEST_F(CommandLineTest, AToolThatNeverEndsIsGivenUpAfterTenSeconds) {
  let("hang partial");
  const auto begin = std::chrono::steady_clock::now();
  expect({"apply"}, 1, "", "apply failed: hidutil did not finish within 10 seconds\n");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(CommandLineTest, AMissingToolShowsThePlatformsError) {
  std::filesystem::remove(bin_ / "hidutil");
  for (const std::string command : {"status", "apply", "restore"}) {
    expect({command}, 1, "", command + " failed: /usr/bin/hidutil: No such file or directory\n");
  }
  std::ofstream(bin_ / "hidutil") << "no program";
  expect({"status"}, 1, "", "status failed: /usr/bin/hidutil: Permission denied\n");
}

TEST_F(CommandLineTest, AListingThatIsTooLongIsAnErrorAndNotAShorterListing) {
  let("flood 400000000");
  expect({"status"}, 1, "", "status failed: hidutil printed more than 256 MiB: Message too long\n");
}

TEST_F(CommandLineTest, WorksWithTheStandardDescriptorsClosed) {
  listKeyboards({"0"});
  prepare_ = [] {
    for (const int descriptor : {0, 1, 2}) {
      ::close(descriptor);
    }
  };
  EXPECT_EQ(zephlin({"apply"}).status, 0);
  EXPECT_NE(toolArguments().find("--get"), std::string::npos);
  replyToSet("", 1);
  EXPECT_EQ(zephlin({"apply"}).status, 1);
}

TEST_F(CommandLineTest, AClosedStandardOutputDiscardsTheReport) {
  listKeyboards({"0"});
  prepare_ = [] { ::close(STDOUT_FILENO); };
  expect({"apply"}, 0, "", "");
}

TEST_F(CommandLineTest, AReportThatCannotBeWrittenIsAFailure) {
  const char* error = "Zephlin: cannot write to standard output: No space left on device\n";
  listKeyboards({"0"});
  prepare_ = [] { ::dup2(::open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO); };
  for (const char* command : {"apply", "restore", "status", "help"}) {
    expect({command}, 1, "", error);
  }
  EXPECT_NE(toolArguments().find("--get"), std::string::npos) << "the work comes first";
  EXPECT_EQ(zephlin({"x"}).status, 2);
  EXPECT_EQ(zephlin({"x"}).errors, std::string("unknown command: x\n\n") + error);
}

TEST_F(CommandLineTest, WorksWhereSignalsAreIgnoredOrBlocked) {
  listKeyboards({"0"});
  prepare_ = [] {
    ::signal(SIGCHLD, SIG_IGN);
    ::signal(SIGPIPE, SIG_IGN);
    sigset_t all;
    ::sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, nullptr);
  };
  expect({"status"}, 0, statusReport("1", "1", "0", "0", "ACTIVE on all keyboards."), "");
}

TEST_F(CommandLineTest, HidutilInheritsNoMoreThanItShould) {
  // The description is shown because the tool fails.
  let("describe 1");
  ::setenv("TEST_MARKER", "a value", 1);
  prepare_ = [] {
    const int open = ::open("/dev/null", O_RDONLY);
    ::dup2(open, 40);
    ::signal(SIGPIPE, SIG_IGN);
    ::signal(SIGCHLD, SIG_IGN);
    sigset_t some;
    ::sigemptyset(&some);
    ::sigaddset(&some, SIGTERM);
    ::sigprocmask(SIG_SETMASK, &some, nullptr);
    if (::chdir("/usr") == -1) {
      ::_exit(1);
    }
  };
  expect({"status"}, 1, "",
         "status failed: hidutil exited with status 1: argument 0: /usr/bin/hidutil\n"
         "descriptors: 0 1 2\n"
         "blocked:\n"
         "ignored:\n"
         "directory: /usr\n"
         "marker: a value\n"
         "input: \n\n");
}

}  // namespace
}  // namespace zephlin
