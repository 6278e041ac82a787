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

std::string usageError(const Arguments& arguments) {
  return usageErrorOf(parseCommandLine, arguments);
}

Invocation invocation(const Arguments& arguments) {
  return std::get<Invocation>(parseCommandLine(arguments));
}

TEST(CommandLine, ReadsTheArgumentsOfTheEngine) {
  const Invocation set =
      invocation({"property", "--matching", R"({"PrimaryUsagePage":1,"PrimaryUsage":6})", "--set",
                  R"({"CapsLockDelayOverride":0})"});
  Matching keyboards;
  keyboards.primaryUsagePage = 1;
  keyboards.primaryUsage = 6;
  EXPECT_EQ(set.socketPath, "/run/zephlin/hidd.sock");
  EXPECT_EQ(set.request, Request(SetRequest{keyboards, {{"CapsLockDelayOverride", 0}}}));
  const Invocation get =
      invocation({"property", "--matching", R"({"PrimaryUsagePage":1,"PrimaryUsage":6})", "--get",
                  "CapsLockDelayOverride"});
  EXPECT_EQ(get.request, Request(GetRequest{keyboards, "CapsLockDelayOverride"}));
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
  EXPECT_EQ(usageError({}), "no command given; see hidutil --help");
  EXPECT_EQ(usageError({"dance"}), "unknown command \"dance\"; see hidutil --help");
  EXPECT_EQ(usageError({"help"}), "unknown command \"help\"; see hidutil --help");
  EXPECT_EQ(usageError({""}), "unknown command \"\"; see hidutil --help");
  EXPECT_EQ(usageError({"list", "--colour"}), "unknown option \"--colour\"; see hidutil --help");
  EXPECT_EQ(usageError({"list", "-"}), "unknown option \"-\"; see hidutil --help");
  EXPECT_EQ(usageError({"list", "--matching"}),
            "option --matching needs a value; see hidutil --help");
  EXPECT_EQ(usageError({"list", "--matching", "{}", "--matching", "{}"}),
            "option --matching is given twice; see hidutil --help");
  EXPECT_EQ(usageError({"list", "more"}), "unexpected argument \"more\"; see hidutil --help");
  EXPECT_EQ(usageError({"list", "--get", "A"}), "\"list\" takes no --get; see hidutil --help");
  EXPECT_EQ(usageError({"plug", "--matching", "{}"}),
            "\"plug\" takes no --matching; see hidutil --help");
  EXPECT_EQ(usageError({"pull"}), "\"pull\" needs a RegistryID; see hidutil --help");
  EXPECT_EQ(usageError({"pull", "1", "2"}), "unexpected argument \"2\"; see hidutil --help");
  EXPECT_EQ(usageError({"property"}),
            "\"property\" needs either --get or --set; see hidutil --help");
  EXPECT_EQ(usageError({"property", "--get", "A", "--set", "{}"}),
            "\"property\" needs either --get or --set; see hidutil --help");
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

std::string serviceUsageError(const Arguments& arguments) {
  return usageErrorOf(parseServiceCommandLine, arguments);
}

TEST(ServiceCommandLine, HasDefaults) {
  const ServiceOptions options = parseServiceCommandLine({});
  EXPECT_EQ(options.socketPath, "/run/zephlin/hidd.sock");
  EXPECT_EQ(options.virtualKeyboards, std::nullopt);
  EXPECT_EQ(options.tapGap, std::chrono::milliseconds(5));
}

TEST(ServiceCommandLine, ReadsItsOptions) {
  const ServiceOptions options =
      parseServiceCommandLine({"--virtual-keyboards", "256", "--socket", "/s", "--tap-gap", "0"});
  EXPECT_EQ(options.socketPath, "/s");
  EXPECT_EQ(options.virtualKeyboards, 256U);
  EXPECT_EQ(options.tapGap, std::chrono::milliseconds(0));
  EXPECT_TRUE(parseServiceCommandLine({"--help"}).showHelp);
  EXPECT_TRUE(parseServiceCommandLine({"--version"}).showVersion);
}

TEST(ServiceCommandLine, RefusesWhatItDoesNotKnow) {
  EXPECT_EQ(serviceUsageError({"--colour"}),
            "unknown argument \"--colour\"; see zephlin-hidd --help");
  EXPECT_EQ(serviceUsageError({"--socket"}),
            "option --socket needs a value; see zephlin-hidd --help");
  for (const char* const count : {"257", "-1", "", "1x", " 1", "99999999999999999999"}) {
    EXPECT_EQ(serviceUsageError({"--virtual-keyboards", count}),
              "--virtual-keyboards takes a number from 0 to 256, not \"" + std::string(count) +
                  "\"; see zephlin-hidd --help");
  }
}

}  // namespace
}  // namespace zephlin
