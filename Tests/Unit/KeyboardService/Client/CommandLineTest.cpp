#include <gtest/gtest.h>

#include "KeyboardService/Client/CommandLine.h"
#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Service/CommandLine.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

using Arguments = std::vector<std::string>;

template <typename Parser>
std::string usageErrorOf(const Parser& parse, const Arguments& arguments) {
  try {
    parse(arguments);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "no error";
}

Invocation invocation(const Arguments& arguments) {
  return std::get<Invocation>(parseCommandLine(arguments));
}

TEST(CommandLine, ReadsTheArgumentsOfTheEngine) {
  const std::string keyboards = R"({"PrimaryUsagePage":1,"PrimaryUsage":6})";
  Matching matching;
  matching.primaryUsagePage = 1;
  matching.primaryUsage = 6;
  const Invocation set =
      invocation({"property", "--matching", keyboards, "--set", R"({"CapsLockDelayOverride":0})"});
  EXPECT_EQ(set.socketPath, "/run/zephlin/hidd.sock");
  EXPECT_EQ(set.request, Request(SetRequest{matching, {{"CapsLockDelayOverride", 0}}}));
  EXPECT_EQ(
      invocation({"property", "--matching", keyboards, "--get", "CapsLockDelayOverride"}).request,
      Request(GetRequest{matching, "CapsLockDelayOverride"}));
}

TEST(CommandLine, TakesTheSocketBeforeAndAfterTheCommand) {
  EXPECT_EQ(invocation({"--socket", "/s", "list"}).socketPath, "/s");
  EXPECT_EQ(invocation({"pull", "100000001", "--socket", "/s"}).socketPath, "/s");
}

TEST(CommandLine, AnOptionsValueMayLookLikeAnOption) {
  EXPECT_EQ(invocation({"property", "--get", "--help"}).request, Request(GetRequest{{}, "--help"}));
}

TEST(CommandLine, HelpAndVersionNeedNoCommand) {
  EXPECT_TRUE(std::holds_alternative<ShowHelp>(parseCommandLine({"--help"})));
  EXPECT_TRUE(std::holds_alternative<ShowHelp>(parseCommandLine({"list", "-h"})));
  EXPECT_TRUE(std::holds_alternative<ShowVersion>(parseCommandLine({"--version"})));
}

TEST(CommandLine, RefusesWhatMakesNoCommand) {
  const std::vector<std::pair<Arguments, std::string>> errors{
      {{}, "no command given"},
      {{"dance"}, "unknown command \"dance\""},
      {{"help"}, "unknown command \"help\""},
      {{""}, "unknown command \"\""},
      {{"list", "--colour"}, "unknown option \"--colour\""},
      {{"list", "-"}, "unknown option \"-\""},
      {{"list", "--matching"}, "option --matching needs a value"},
      {{"list", "--matching", "{}", "--matching", "{}"}, "option --matching is given twice"},
      {{"list", "more"}, "unexpected argument \"more\""},
      {{"list", "--get", "A"}, "\"list\" takes no --get"},
      {{"plug", "--matching", "{}"}, "\"plug\" takes no --matching"},
      {{"pull"}, "\"pull\" needs a RegistryID"},
      {{"pull", "1", "2"}, "unexpected argument \"2\""},
      {{"property"}, "\"property\" needs either --get or --set"},
      {{"property", "--get", "A", "--set", "{}"}, "\"property\" needs either --get or --set"}};
  for (const auto& [arguments, message] : errors) {
    EXPECT_EQ(usageErrorOf(parseCommandLine, arguments), message + "; see hidutil --help");
  }
}

TEST(CommandLine, RefusesValuesThatAreNotValid) {
  EXPECT_EQ(requestErrorOf([] {
              parseCommandLine({"pull", "0x1"});
            }),
            "\"0x1\" is not a RegistryID; hidutil list prints them");
  EXPECT_THROW(parseCommandLine({"property", "--get", ""}), RequestError);
  EXPECT_THROW(parseCommandLine({"property", "--set", "{}"}), RequestError);
  EXPECT_THROW(parseCommandLine({"list", "--matching", "{"}), RequestError);
}

TEST(ServiceCommandLine, HasDefaults) {
  const ServiceOptions options = parseServiceCommandLine({});
  EXPECT_EQ(options.socketPath, "/run/zephlin/hidd.sock");
  EXPECT_EQ(options.virtualKeyboards, std::nullopt);
  EXPECT_EQ(options.statePath, "/run/zephlin/hidd.sock.state");
  EXPECT_EQ(options.tapGap, std::chrono::milliseconds(5));
}

TEST(ServiceCommandLine, ReadsItsOptions) {
  const ServiceOptions options =
      parseServiceCommandLine({"--virtual-keyboards", "256", "--socket", "/s", "--tap-gap", "0"});
  EXPECT_EQ(options.socketPath, "/s");
  EXPECT_EQ(options.statePath, "/s.state");
  EXPECT_EQ(parseServiceCommandLine({"--state", "/p", "--socket", "/s"}).statePath, "/p");
  EXPECT_EQ(options.virtualKeyboards, 256U);
  EXPECT_EQ(options.tapGap, std::chrono::milliseconds(0));
  EXPECT_TRUE(parseServiceCommandLine({"--help"}).showHelp);
  EXPECT_TRUE(parseServiceCommandLine({"--version"}).showVersion);
}

TEST(ServiceCommandLine, TheCheckTakesASocketOnly) {
  const ServiceOptions options = parseServiceCommandLine({"--socket", "/s", "--check"});
  EXPECT_TRUE(options.check);
  EXPECT_EQ(options.socketPath, "/s");
  EXPECT_FALSE(parseServiceCommandLine({}).check);
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--check", "--tap-gap", "5"}, {"--state", "/p", "--check"}}) {
    EXPECT_EQ(usageErrorOf(parseServiceCommandLine, arguments),
              "--check takes no option except --socket; see zephlin-hidd --help");
  }
}

TEST(ServiceCommandLine, RefusesWhatItDoesNotKnow) {
  std::vector<std::pair<Arguments, std::string>> errors{
      {{"--colour"}, "unknown argument \"--colour\""},
      {{"--socket"}, "option --socket needs a value"}};
  for (const std::string count : {"257", "-1", "", "1x", " 1", "99999999999999999999"}) {
    errors.push_back({{"--virtual-keyboards", count},
                      "--virtual-keyboards takes a number from 0 to 256, not \"" + count + '"'});
  }
  for (const auto& [arguments, message] : errors) {
    EXPECT_EQ(usageErrorOf(parseServiceCommandLine, arguments),
              message + "; see zephlin-hidd --help");
  }
}

}  // namespace
}  // namespace zephlin
