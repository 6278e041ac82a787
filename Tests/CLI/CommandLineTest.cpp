// What each command prints, its exit status, and how it runs hidutil.

#include <fcntl.h>
#include <unistd.h>

#include "Tests/CLI/CommandLineFixture.h"

namespace zephlin {
namespace {

constexpr const char* restoreReport =
    "Restored Apple default Caps Lock behavior (75 ms delay). A reboot resets the override "
    "entirely.\n";

constexpr const char* nothingConfirmed =
    "Apply command succeeded, but no keyboard service confirmed the override.\n";

std::string verifiedOn(const std::string& services) {
  return "Caps Lock delay override applied and verified (0 ms on " + services + ").\n";
}

std::string confirmedBy(const std::string& services) {
  return "Applied, but only " + services +
         " keyboard services confirmed the override. Re-run in a moment.\n";
}

TEST_F(CommandLineTest, HelpPrintsTheUsageText) {
  for (const char* word : {"help", "--help", "-h"}) {
    expect({word}, 0, usage_, "");
  }
  EXPECT_EQ(toolArguments(), "");
}

TEST_F(CommandLineTest, AnUnknownWordIsReportedBeforeTheUsageText) {
  for (const std::string word : {"Status", "x", "", "applY", " status"}) {
    expect({word}, 2, usage_, "unknown command: " + word + "\n\n");
  }
}

TEST_F(CommandLineTest, ApplySetsZeroThenReadsBack) {
  listKeyboards({"0"});
  zephlin({"apply"});
  EXPECT_EQ(toolArguments(),
            "property\n--matching\n{\"PrimaryUsagePage\":1,\"PrimaryUsage\":6}\n"
            "--set\n{\"CapsLockDelayOverride\":0}\n\n"
            "property\n--matching\n{\"PrimaryUsagePage\":1,\"PrimaryUsage\":6}\n"
            "--get\nCapsLockDelayOverride\n\n");
}

TEST_F(CommandLineTest, ApplyReportsHowManyKeyboardsConfirmed) {
  struct Case {
    std::vector<std::string> values;
    int status;
    std::string report;
  };
  for (const Case& each : std::vector<Case>{
           {{"0"}, 0, verifiedOn("1 keyboard service")},
           {{"0", "0", "0"}, 0, verifiedOn("3 keyboard services")},
           {{"0", "75", "0"}, 0, confirmedBy("2 of 3")},
           {{"0", "10"}, 0, confirmedBy("1 of 2")},
           {{"0", "10", "1000", "40", "75", "(null)"}, 0, confirmedBy("1 of 6")},
           {{"75", "(null)", "10"}, 1, nothingConfirmed},
       }) {
    listKeyboards(each.values);
    expect({"apply"}, each.status, each.report, "");
  }
  replyToGet("");
  expect({"apply"}, 1, nothingConfirmed, "");
}

TEST_F(CommandLineTest, ApplyAddsWhyKeyboardsAreNotSetIfSomeAreNot) {
  const std::string held =
      "hidutil: keyboard 100000002 is not set: held by another program: keyd (pid 412)\n";
  const std::string absent = "hidutil: keyboard 100000003 is not set: cannot use /dev/uinput\n";
  replyToSet("RegistryID   Key   Value\n" + held + "nothing of hidutil: \n" + absent);
  listKeyboards({"0", "(null)", "(null)"});
  expect({"apply"}, 0, confirmedBy("1 of 3"), held + absent);
  listKeyboards({"(null)"});
  expect({"apply"}, 1, nothingConfirmed, held + absent);
  // It is set by now.
  listKeyboards({"0", "0"});
  expect({"apply"}, 0, verifiedOn("2 keyboard services"), "");
  expect({"restore"}, 0, restoreReport, "");
}

TEST_F(CommandLineTest, StatusCountsEachKindOfDelay) {
  struct Case {
    std::vector<std::string> values;
    std::string report;
  };
  for (const Case& each : std::vector<Case>{
           {{"0", "75", "-1", "10", "1000"},
            statusReport("5", "1", "2", "2", "PARTIALLY active (1 of 5 services).")},
           {{"0", "0"}, statusReport("2", "2", "0", "0", "ACTIVE on all keyboards.")},
           {{"(null)", "10"}, statusReport("2", "0", "1", "1", "NOT active.")},
           {{}, statusReport("0", "0", "0", "0", "NOT active.")},
           {{"0", "\xFF"}, statusReport("0", "0", "0", "0", "NOT active.")},
       }) {
    listKeyboards(each.values);
    expect({"status"}, 0, each.report, "");
  }
}

TEST_F(CommandLineTest, NumbersAreNotGrouped) {
  listKeyboards(std::vector<std::string>(1234, "0"));
  expect({"apply"}, 0, verifiedOn("1234 keyboard services"), "");
  ::setenv("LC_ALL", "en_US.UTF-8", 1);
  expect({"status"}, 0, statusReport("1234", "1234", "0", "0", "ACTIVE on all keyboards."), "");
}

TEST_F(CommandLineTest, RestoreReadsNothingBack) {
  expect({"restore"}, 0, restoreReport, "");
  EXPECT_EQ(toolArguments(),
            "property\n--matching\n{\"PrimaryUsagePage\":1,\"PrimaryUsage\":6}\n"
            "--set\n{\"CapsLockDelayOverride\":-1}\n\n");
}

TEST_F(CommandLineTest, ArgumentsBehindACommandAreIgnored) {
  listKeyboards({"0"});
  const std::string alone = zephlin({"status"}).output;
  expect({"status", "apply", "--help"}, 0, alone, "");
  EXPECT_EQ(toolArguments().find("--set"), std::string::npos);
}

TEST_F(CommandLineTest, AFailureKeepsTheLineFeedOfTheTool) {
  replyToSet("X\n", 1);
  expect({"apply"}, 1, "", "apply failed: hidutil exited with status 1: X\n\n");
  expect({"restore"}, 1, "", "restore failed: hidutil exited with status 1: X\n\n");
  replyToGet("Y", 255);
  expect({"status"}, 1, "", "status failed: hidutil exited with status 255: Y\n");
}

TEST_F(CommandLineTest, ApplyFailsWhenTheReadBackFails) {
  replyToGet("no service\n", 2, "stderr");
  expect({"apply"}, 1, "", "apply failed: hidutil exited with status 2: no service\n\n");
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
  const std::string advice = ". Prefer the ⇪ menu toggle while it runs.\n";
  listKeyboards({"0"});
  expect({"restore"}, 0, restoreReport + note + " and undo this restore" + advice, "");
  expect({"apply"}, 0, verifiedOn("1 keyboard service") + note + advice, "");
  expect({"status"}, 0, statusReport("1", "1", "0", "0", "ACTIVE on all keyboards."), "");
  expect({"help"}, 0, usage_, "");

  // No report, no note.
  replyToSet("X", 1);
  expect({"apply"}, 1, "", "apply failed: hidutil exited with status 1: X\n");
  expect({"restore"}, 1, "", "restore failed: hidutil exited with status 1: X\n");
  // A report that confirms less, or nothing, has one all the same.
  replyToSet("");
  listKeyboards({"0", "75"});
  expect({"apply"}, 0, confirmedBy("1 of 2") + note + advice, "");
  replyToGet("");
  expect({"apply"}, 1, nothingConfirmed + note + advice, "");
  ::close(file);
  expect({"restore"}, 0, restoreReport, "");
}

}  // namespace
}  // namespace zephlin
