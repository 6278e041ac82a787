#include <gtest/gtest.h>
#include <unistd.h>

#include "Tests/CLI/KeyboardService/RunningService.h"

namespace zephlin {
namespace {

const std::string keyboards = R"({"PrimaryUsagePage":1,"PrimaryUsage":6})";

const std::string listHeader =
    "RegistryID   VendorID   ProductID   UsagePage   Usage   Transport   State     Product\n";
const std::string secondKeyboard =
    "100000002    0          2           1           6       Virtual     default   "
    "Virtual Keyboard 2\n";

test::Outcome success(const std::string& output) {
  return {0, output, ""};
}

/// The lines below the header that `property` prints for one-letter keys.
test::Outcome properties(const std::string& lines) {
  return success("RegistryID   Key   Value\n" + lines);
}

test::Outcome delays(const std::string& lines) {
  return success("RegistryID   Key                     Value\n" + lines);
}

TEST(Commands, ListPrintsTheKeyboards) {
  const RunningService service;
  EXPECT_EQ(service.hidutil({"list"}),
            success(listHeader +
                    "100000001    0          1           1           6       Virtual     default   "
                    "Virtual Keyboard 1\n" +
                    secondKeyboard));
}

TEST(Commands, MatchingChoosesKeyboards) {
  const RunningService service;
  EXPECT_EQ(service.hidutil({"list", "--matching", R"({"Product":"Virtual Keyboard 2"})"}),
            success(listHeader + secondKeyboard));
  EXPECT_EQ(service.hidutil({"property", "--matching", R"({"PrimaryUsage":7})", "--get", "A"}),
            properties(""));
}

TEST(Commands, SettingNothingIsNoFailureButIsSaid) {
  const RunningService service;
  EXPECT_EQ(
      service.hidutil({"property", "--matching", R"({"PrimaryUsage":7})", "--set", R"({"A":1})"}),
      (test::Outcome{
          0, "RegistryID   Key   Value\n",
          "hidutil: no keyboard matches; " +
              containerAdvice().value_or(R"("zephlin-hidd --check" as root says what there is)") +
              '\n'}));
}

TEST(Commands, WhatIsSetCanBeGotUntilItIsSetAgain) {
  const RunningService service;
  EXPECT_EQ(
      service.hidutil({"property", "--matching", keyboards, "--get", "CapsLockDelayOverride"}),
      delays("100000001    CapsLockDelayOverride   (null)\n"
             "100000002    CapsLockDelayOverride   (null)\n"));
  const test::Outcome zero = delays(
      "100000001    CapsLockDelayOverride   0\n"
      "100000002    CapsLockDelayOverride   0\n");
  EXPECT_EQ(service.hidutil(
                {"property", "--matching", keyboards, "--set", R"({"CapsLockDelayOverride":0})"}),
            zero);
  EXPECT_EQ(
      service.hidutil({"property", "--matching", keyboards, "--get", "CapsLockDelayOverride"}),
      zero);
  EXPECT_EQ(service.hidutil({"property", "--matching", R"({"RegistryID":"100000002"})", "--set",
                             R"({"CapsLockDelayOverride":-9223372036854775808})"}),
            delays("100000002    CapsLockDelayOverride   -9223372036854775808\n"));
  EXPECT_EQ(service.hidutil({"property", "--get", "CapsLockDelayOverride"}),
            delays("100000001    CapsLockDelayOverride   0\n"
                   "100000002    CapsLockDelayOverride   -9223372036854775808\n"));
}

TEST(Commands, SeveralKeysAreSetAllOrNone) {
  const RunningService service;
  EXPECT_EQ(service.hidutil(
                {"property", "--matching", R"({"ProductID":1})", "--set", R"({"B":2,"A":1})"}),
            properties("100000001    A     1\n"
                       "100000001    B     2\n"));
  EXPECT_EQ(service.hidutil({"property", "--set", R"({"A":5,"B":1.5})"}).status, 1);
  std::string many;
  for (int index = 0; index < 63; ++index) {
    many += "\"K" + std::to_string(index) + "\":0,";
  }
  // 64 fit on the second keyboard, but not beside A and B on the first.
  EXPECT_EQ(service.hidutil({"property", "--set", "{" + many + "\"A\":7}"}),
            failure("keyboard 100000001 would have more than 64 properties; nothing is changed; "
                    "set only properties that it has"));
  EXPECT_EQ(service.hidutil({"property", "--get", "A"}), properties("100000001    A     1\n"
                                                                    "100000002    A     (null)\n"));
}

TEST(Commands, APluggedKeyboardIsThereUntilItIsPulled) {
  const RunningService service(1);
  EXPECT_EQ(service.hidutil({"property", "--set", R"({"A":1})"}).status, 0);
  EXPECT_EQ(service.hidutil({"plug"}), success("100000002\n"));
  EXPECT_EQ(service.hidutil({"property", "--get", "A"}), properties("100000001    A     1\n"
                                                                    "100000002    A     (null)\n"));
  EXPECT_EQ(service.hidutil({"pull", "100000001"}), success(""));
  EXPECT_EQ(service.hidutil({"plug"}), success("100000003\n"));
  EXPECT_EQ(service.hidutil({"property", "--get", "A"}), properties("100000002    A     (null)\n"
                                                                    "100000003    A     (null)\n"));
  EXPECT_EQ(service.hidutil({"pull", "100000001"}),
            failure("no keyboard 100000001; see hidutil list"));
}

TEST(Commands, NoMoreVirtualKeyboardsThanThereCanBeArePlugged) {
  const RunningService service(256);
  EXPECT_EQ(service.hidutil({"plug"}),
            failure("virtual keyboard limit reached (256); pull one first"));
}

TEST(Commands, TheServiceLogsWhatChangesAndByWhom) {
  RunningService service(1);
  EXPECT_EQ(service.hidutil({"property", "--set", R"({"A":1,"B":2})"}).status, 0);
  EXPECT_EQ(service.hidutil({"plug"}).status, 0);
  EXPECT_EQ(service.hidutil({"pull", "100000001"}).status, 0);
  EXPECT_EQ(service.hidutil({"list"}).status, 0);
  EXPECT_EQ(service.stop().errors,
            "zephlin-hidd: keyboard 100000001 plugged: \"Virtual Keyboard 1\", Virtual\n"
            "zephlin-hidd: ready on " +
                service.socketPath() +
                " with 1 keyboard\n"
                "zephlin-hidd: A=1, B=2 set on 1 keyboard by user " +
                std::to_string(::geteuid()) +
                "\n"
                "zephlin-hidd: keyboard 100000002 plugged: \"Virtual Keyboard 2\", Virtual\n"
                "zephlin-hidd: keyboard 100000001 pulled\n");
}

TEST(Commands, HelpAndVersionGoToStandardOutput) {
  const test::Outcome help = test::run({hidutilProgram, "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.output.find("Usage: hidutil [--socket PATH] COMMAND\n"), 0U);
  EXPECT_EQ(help.errors, "");
  EXPECT_EQ(test::run({hidutilProgram, "-h"}), help);
  EXPECT_EQ(test::run({hidutilProgram, "--version"}),
            success("hidutil (Zephlin) " ZEPHLIN_VERSION "\n"));
  EXPECT_EQ(test::run({serviceProgram, "--help"}).output.find("Usage: zephlin-hidd "), 0U);
  EXPECT_EQ(test::run({serviceProgram, "--version"}),
            success("zephlin-hidd (Zephlin) " ZEPHLIN_VERSION "\n"));
}

}  // namespace
}  // namespace zephlin
