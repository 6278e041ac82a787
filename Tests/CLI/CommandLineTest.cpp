// Runs the built executable, with TestTool standing as /usr/bin/hidutil.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin {
namespace {

using test::Outcome;

constexpr const char* usage =
    "Zephlin — instant Caps Lock for macOS\n"
    "\n"
    "usage: Zephlin [command]\n"
    "\n"
    "Run with no command to start the menu bar app.\n"
    "\n"
    "commands:\n"
    "  apply     set CapsLockDelayOverride=0 on all keyboards\n"
    "  restore   restore Apple's default (75 ms) behavior\n"
    "  status    show the current override state\n"
    "  help      show this help\n";

constexpr const char* restoreReport =
    "Restored Apple default Caps Lock behavior (75 ms delay). A reboot resets the override "
    "entirely.\n";

constexpr const char* noApplication =
    "Zephlin: the menu bar app is not installed; install the package zephlin-desktop\n";

std::string listing(const std::vector<std::string>& values) {
  std::string text = "RegistryID   Key                     Value\n";
  for (std::size_t row = 0; row < values.size(); ++row) {
    text += "10000046" + std::to_string(row) + "    CapsLockDelayOverride   " + values[row] + "\n";
  }
  return text;
}

std::string statusReport(const std::string& total, const std::string& instant,
                         const std::string& usual, const std::string& other) {
  return "Keyboard HID services: " + total + "\n  instant (0 ms):      " + instant +
         "\n  Apple default:       " + usual + "\n  other delay values:  " + other + "\n";
}

class CommandLineTest : public testing::Test {
 protected:
  CommandLineTest() {
    std::filesystem::create_directory(bin_);
    std::filesystem::create_directory(replies_);
    std::filesystem::copy_file(TEST_TOOL, bin_ / "hidutil");
    ::setenv("XDG_RUNTIME_DIR", directory_.path().c_str(), 1);
    let("replies " + replies_.string());
    replyToSet("");
  }

  void replyToSet(const std::string& text, int status = 0) { write("set", text, status, "stdout"); }
  void replyToGet(const std::string& text, int status = 0) { write("get", text, status, "stdout"); }
  void replyToGetOnStandardError(const std::string& text, int status) {
    write("get", text, status, "stderr");
  }

  /// What hidutil does instead of replying.
  static void let(const std::string& instructions) {
    ::setenv("TEST_TOOL", instructions.c_str(), 1);
  }

  Outcome zephlin(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {WITH_PRIVATE_BIN, bin_.string(), program_.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    test::TestProcess process(words, prepare_);
    Outcome outcome = process.wait();
    errorWrites_ = process.errorWrites();
    return outcome;
  }

  void expect(const std::vector<std::string>& arguments, int status, const std::string& output,
              const std::string& error) {
    const Outcome result = zephlin(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, output);
    EXPECT_EQ(result.errors, error);
    EXPECT_EQ(errorWrites_, error.empty() ? 0 : 1) << "an error is one write";
  }

  /// The argument vectors of hidutil's runs, one argument a line, runs divided by an empty line.
  std::string toolArguments() {
    std::ifstream file(replies_ / "arguments");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  const test::TemporaryDirectory directory_;
  const std::filesystem::path bin_ = directory_.path() / "bin";
  const std::filesystem::path replies_ = directory_.path() / "replies";
  std::filesystem::path program_ = ZEPHLIN;
  /// Runs in the new process just before it becomes Zephlin.
  std::function<void()> prepare_ = [] {};

 private:
  int errorWrites_ = 0;

  void write(const char* name, const std::string& text, int status, const char* stream) {
    std::ofstream(replies_ / name) << status << ' ' << stream << '\n' << text;
  }
};

TEST_F(CommandLineTest, HelpPrintsTheUsageText) {
  for (const char* word : {"help", "--help", "-h"}) {
    expect({word}, 0, usage, "");
  }
  EXPECT_EQ(toolArguments(), "");
}

TEST_F(CommandLineTest, AnUnknownWordIsReportedBeforeTheUsageText) {
  for (const std::string word : {"Status", "x", "", "applY", " status"}) {
    expect({word}, 2, usage, "unknown command: " + word + "\n\n");
  }
}

TEST_F(CommandLineTest, OnATerminalTheUnknownWordStandsAboveTheUsageText) {
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
  EXPECT_EQ(shown, std::string("unknown command: x\n\n") + usage);
}

// Seen by what it says where its module is not installed.
TEST_F(CommandLineTest, NoArgumentAndEveryUnknownOptionStartTheApplication) {
  program_ = directory_.path() / "Zephlin";
  std::filesystem::copy_file(ZEPHLIN, program_);
  expect({}, 1, "", noApplication);
  for (const char* word : {"-", "--", "-x", "--status", "-H", "--Help", "-NSDocument"}) {
    expect({word}, 1, "", noApplication);
    expect({word, "status"}, 1, "", noApplication);
  }
}

TEST_F(CommandLineTest, AModuleThatIsNoneIsReported) {
  program_ = directory_.path() / "Zephlin";
  std::filesystem::copy_file(ZEPHLIN, program_);
  const auto module = directory_.path() / "libzephlin-desktop.so";
  std::ofstream(module) << "no library";
  expect({}, 1, "",
         "Zephlin: cannot load the menu bar app; reinstall the package zephlin-desktop: " +
             module.string() + ": file too short\n");
}

TEST_F(CommandLineTest, ApplySetsZeroThenReadsBack) {
  replyToGet(listing({"0"}));
  zephlin({"apply"});
  EXPECT_EQ(toolArguments(),
            "property\n--matching\n{\"PrimaryUsagePage\":1,\"PrimaryUsage\":6}\n"
            "--set\n{\"CapsLockDelayOverride\":0}\n\n"
            "property\n--matching\n{\"PrimaryUsagePage\":1,\"PrimaryUsage\":6}\n"
            "--get\nCapsLockDelayOverride\n\n");
}

TEST_F(CommandLineTest, ApplyOnOneKeyboardReportsOneService) {
  replyToGet(listing({"0"}));
  expect({"apply"}, 0,
         "Caps Lock delay override applied and verified (0 ms on 1 keyboard service).\n", "");
}

TEST_F(CommandLineTest, ApplyOnThreeKeyboardsReportsThreeServices) {
  replyToSet("what it prints is not shown\n");
  replyToGet(listing({"0", "0", "0"}));
  expect({"apply"}, 0,
         "Caps Lock delay override applied and verified (0 ms on 3 keyboard services).\n", "");
}

TEST_F(CommandLineTest, ApplyThatReachesOnlySomeKeyboardsSaysSoAndSucceeds) {
  replyToGet(listing({"0", "75", "0"}));
  expect({"apply"}, 0,
         "Applied, but only 2 of 3 keyboard services confirmed the override. Re-run in a moment.\n",
         "");
  replyToGet(listing({"0", "10"}));
  expect({"apply"}, 0,
         "Applied, but only 1 of 2 keyboard services confirmed the override. Re-run in a moment.\n",
         "");
  replyToGet(listing({"0", "10", "1000", "40", "75", "(null)"}));
  expect({"apply"}, 0,
         "Applied, but only 1 of 6 keyboard services confirmed the override. Re-run in a moment.\n",
         "");
}

TEST_F(CommandLineTest, ApplyThatNoKeyboardConfirmsFails) {
  const char* report = "Apply command succeeded, but no keyboard service confirmed the override.\n";
  replyToGet(listing({"75", "(null)", "10"}));
  expect({"apply"}, 1, report, "");
  replyToGet("");
  expect({"apply"}, 1, report, "");
}

TEST_F(CommandLineTest, NumbersAreNotGrouped) {
  replyToGet(listing(std::vector<std::string>(1234, "0")));
  expect({"apply"}, 0,
         "Caps Lock delay override applied and verified (0 ms on 1234 keyboard services).\n", "");
  ::setenv("LC_ALL", "en_US.UTF-8", 1);
  expect({"status"}, 0,
         statusReport("1234", "1234", "0", "0") + "Zephlin override is ACTIVE on all keyboards.\n",
         "");
}

TEST_F(CommandLineTest, AFailureKeepsTheLineFeedOfTheTool) {
  replyToSet("X\n", 1);
  expect({"apply"}, 1, "", "apply failed: hidutil exited with status 1: X\n\n");
  expect({"restore"}, 1, "", "restore failed: hidutil exited with status 1: X\n\n");
  replyToGet("Y", 255);
  expect({"status"}, 1, "", "status failed: hidutil exited with status 255: Y\n");
}

TEST_F(CommandLineTest, ApplyFailsWhenTheReadBackFails) {
  replyToGetOnStandardError("no service\n", 2);
  expect({"apply"}, 1, "", "apply failed: hidutil exited with status 2: no service\n\n");
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
  expect({"status"}, 1, "", "status failed: /usr/bin/hidutil: No such file or directory\n");
  expect({"apply"}, 1, "", "apply failed: /usr/bin/hidutil: No such file or directory\n");
  expect({"restore"}, 1, "", "restore failed: /usr/bin/hidutil: No such file or directory\n");
  std::ofstream(bin_ / "hidutil") << "no program";
  expect({"status"}, 1, "", "status failed: /usr/bin/hidutil: Permission denied\n");
}

TEST_F(CommandLineTest, RestoreReadsNothingBack) {
  expect({"restore"}, 0, restoreReport, "");
  EXPECT_EQ(toolArguments(),
            "property\n--matching\n{\"PrimaryUsagePage\":1,\"PrimaryUsage\":6}\n"
            "--set\n{\"CapsLockDelayOverride\":-1}\n\n");
}

TEST_F(CommandLineTest, StatusCountsEachKindOfDelay) {
  replyToGet(listing({"0", "75", "-1", "10", "1000"}));
  expect({"status"}, 0,
         statusReport("5", "1", "2", "2") +
             "Zephlin override is PARTIALLY active (1 of 5 services).\n",
         "");
  replyToGet(listing({"0", "0"}));
  expect({"status"}, 0,
         statusReport("2", "2", "0", "0") + "Zephlin override is ACTIVE on all keyboards.\n", "");
  replyToGet(listing({"(null)", "10"}));
  expect({"status"}, 0, statusReport("2", "0", "1", "1") + "Zephlin override is NOT active.\n", "");
}

TEST_F(CommandLineTest, StatusWithoutKeyboardsSucceeds) {
  replyToGet(listing({}));
  expect({"status"}, 0, statusReport("0", "0", "0", "0") + "Zephlin override is NOT active.\n", "");
}

TEST_F(CommandLineTest, ArgumentsBehindACommandAreIgnored) {
  replyToGet(listing({"0"}));
  const Outcome alone = zephlin({"status"});
  const Outcome followed = zephlin({"status", "apply", "--help"});
  EXPECT_EQ(followed.output, alone.output);
  EXPECT_EQ(followed.errors, "");
  EXPECT_EQ(followed.status, 0);
  EXPECT_EQ(toolArguments().find("--set"), std::string::npos);
}

TEST_F(CommandLineTest, OutputThatIsNotUtf8CountsNothing) {
  replyToGet(listing({"0"}) + "\xFF\n");
  expect({"status"}, 0, statusReport("0", "0", "0", "0") + "Zephlin override is NOT active.\n", "");
}

TEST_F(CommandLineTest, ARunningApplicationIsNotedAfterApplyAndRestoreAlone) {
  const std::string lockFile = directory_.path() / "com.quorvenel.zephlin.lock";
  const int file = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  ASSERT_EQ(::fcntl(file, F_SETLK, &lock), 0);

  const std::string note =
      "note: the Zephlin menu bar app is running and will re-assert its own setting";
  replyToGet(listing({"0"}));
  expect({"restore"}, 0,
         restoreReport + note + " and undo this restore. Prefer the ⇪ menu toggle while it runs.\n",
         "");
  expect({"apply"}, 0,
         "Caps Lock delay override applied and verified (0 ms on 1 keyboard service).\n" + note +
             ". Prefer the ⇪ menu toggle while it runs.\n",
         "");
  expect({"status"}, 0,
         statusReport("1", "1", "0", "0") + "Zephlin override is ACTIVE on all keyboards.\n", "");

  expect({"help"}, 0, usage, "");

  // No report, no note.
  replyToSet("X", 1);
  expect({"apply"}, 1, "", "apply failed: hidutil exited with status 1: X\n");
  expect({"restore"}, 1, "", "restore failed: hidutil exited with status 1: X\n");
  // A report that confirms less, or nothing, has one all the same.
  replyToSet("");
  replyToGet(listing({"0", "75"}));
  expect(
      {"apply"}, 0,
      "Applied, but only 1 of 2 keyboard services confirmed the override. Re-run in a moment.\n" +
          note + ". Prefer the ⇪ menu toggle while it runs.\n",
      "");
  replyToGet("");
  expect({"apply"}, 1,
         "Apply command succeeded, but no keyboard service confirmed the override.\n" + note +
             ". Prefer the ⇪ menu toggle while it runs.\n",
         "");
  ::close(file);
  expect({"restore"}, 0, restoreReport, "");
}

TEST_F(CommandLineTest, AListingThatIsTooLongIsAnErrorAndNotAShorterListing) {
  let("flood 400000000");
  expect({"status"}, 1, "", "status failed: hidutil printed more than 256 MiB: Message too long\n");
}

TEST_F(CommandLineTest, WorksWithTheStandardDescriptorsClosed) {
  replyToGet(listing({"0"}));
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

TEST_F(CommandLineTest, WorksWhereSignalsAreIgnoredOrBlocked) {
  replyToGet(listing({"0"}));
  prepare_ = [] {
    ::signal(SIGCHLD, SIG_IGN);
    ::signal(SIGPIPE, SIG_IGN);
    sigset_t all;
    ::sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, nullptr);
  };
  expect({"status"}, 0,
         statusReport("1", "1", "0", "0") + "Zephlin override is ACTIVE on all keyboards.\n", "");
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
  const Outcome result = zephlin({"status"});
  EXPECT_EQ(result.errors,
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
