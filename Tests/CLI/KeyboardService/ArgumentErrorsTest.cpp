#include <gtest/gtest.h>

#include "Tests/CLI/KeyboardService/RunningService.h"

namespace zephlin {
namespace {

/// Runs hidutil where there is no service: what is wrong with the arguments is said all the same.
test::Outcome hidutil(std::vector<std::string> arguments) {
  const test::TemporaryDirectory directory;
  arguments.insert(arguments.begin(), {hidutilProgram, "--socket", directory.file("absent")});
  return test::run(arguments);
}

test::Outcome usageFailure(const std::string& message) {
  return {64, "", "hidutil: " + message + "; see hidutil --help\n"};
}

TEST(ArgumentErrors, WrongUsageEndsWithStatus64) {
  EXPECT_EQ(test::run({hidutilProgram}), usageFailure("no command given"));
  EXPECT_EQ(hidutil({"help"}), usageFailure("unknown command \"help\""));
  EXPECT_EQ(hidutil({"list", "--colour"}), usageFailure("unknown option \"--colour\""));
  EXPECT_EQ(hidutil({"list", "more"}), usageFailure("unexpected argument \"more\""));
  EXPECT_EQ(hidutil({"property", "--get"}), usageFailure("option --get needs a value"));
  EXPECT_EQ(hidutil({"pull"}), usageFailure("\"pull\" needs a RegistryID"));
  EXPECT_EQ(hidutil({"property"}), usageFailure("\"property\" needs either --get or --set"));
  EXPECT_EQ(hidutil({"property", "--get", "A", "--set", "{\"A\":1}"}),
            usageFailure("\"property\" needs either --get or --set"));
}

TEST(ArgumentErrors, ControlCharactersDoNotReachTheTerminal) {
  EXPECT_EQ(hidutil({"\x1b[2J\nmore"}), usageFailure(R"(unknown command "\x1b[2J\x0amore")"));
  EXPECT_EQ(hidutil({"list", "--matching", "{\"\\u001b\\n\":1}"}),
            failure(R"(unknown matching key "\x1b\x0a"; known keys are PrimaryUsagePage, )"
                    "PrimaryUsage, VendorID, ProductID, Product, RegistryID"));
  EXPECT_EQ(test::run({hidutilProgram, "--socket", "/absent\n/s", "list"}),
            absence(R"(/absent\x0a/s)", "No such file or directory"));
}

TEST(ArgumentErrors, MatchingHasToBeAnObjectOfKnownKeys) {
  EXPECT_EQ(hidutil({"list", "--matching", R"({"ProductID":})"}),
            failure("--matching is not valid JSON (at character 14); expected an object such as "
                    R"({"PrimaryUsagePage":1,"PrimaryUsage":6})"));
  EXPECT_EQ(hidutil({"list", "--matching", "[]"}),
            failure("--matching is not an object; expected an object such as "
                    R"({"PrimaryUsagePage":1,"PrimaryUsage":6})"));
  EXPECT_EQ(hidutil({"property", "--get", "A", "--matching", R"({"Colour":1})"}),
            failure("unknown matching key \"Colour\"; known keys are PrimaryUsagePage, "
                    "PrimaryUsage, VendorID, ProductID, Product, RegistryID"));
  EXPECT_EQ(hidutil({"list", "--matching", R"({"VendorID":"1"})"}),
            failure("matching key \"VendorID\" must be a whole number from -9223372036854775808 to "
                    "9223372036854775807"));
  EXPECT_EQ(hidutil({"list", "--matching", R"({"Product":1})"}),
            failure(R"(matching key "Product" must be text, such as "Virtual Keyboard 1")"));
  EXPECT_EQ(hidutil({"list", "--matching", R"({"RegistryID":"0x1"})"}),
            failure("matching key \"RegistryID\" must be text as hidutil list prints it, such as "
                    "\"100000001\""));
}

TEST(ArgumentErrors, SetTakesAnObjectOfWholeNumbers) {
  EXPECT_EQ(hidutil({"property", "--set", "CapsLockDelayOverride=0"}),
            failure("--set is not valid JSON (at character 1); expected an object such as "
                    R"({"CapsLockDelayOverride":0})"));
  EXPECT_EQ(
      hidutil({"property", "--set", "{}"}),
      failure(R"(no property to set; expected an object such as {"CapsLockDelayOverride":0})"));
  const std::string manyDigits = '1' + std::string(60, '0');
  for (const char* const value : {"9223372036854775808", "-9223372036854775809", manyDigits.c_str(),
                                  "0.5", "\"0\"", "true", "null"}) {
    EXPECT_EQ(hidutil({"property", "--set", "{\"A\":" + std::string(value) + "}"}),
              failure("the value of \"A\" must be a whole number from -9223372036854775808 to "
                      "9223372036854775807"))
        << value;
  }
  EXPECT_EQ(hidutil({"property", "--set", R"({"A":1e999})"}),
            failure("--set has a number that is out of range; expected an object such as "
                    R"({"CapsLockDelayOverride":0})"));
}

TEST(ArgumentErrors, KeysArePrintableAndShort) {
  const std::string rule = " is not valid; a key is 1 to 128 printable ASCII characters, no spaces";
  EXPECT_EQ(hidutil({"property", "--get", ""}), failure("property key \"\"" + rule));
  EXPECT_EQ(hidutil({"property", "--get", "a b"}), failure("property key \"a b\"" + rule));
  EXPECT_EQ(hidutil({"property", "--get", std::string(129, 'k')}),
            failure("property key \"" + std::string(129, 'k') + "\"" + rule));
  EXPECT_EQ(hidutil({"property", "--set", R"({"é":1})"}), failure("property key \"é\"" + rule));
}

TEST(ArgumentErrors, PullTakesARegistryID) {
  EXPECT_EQ(hidutil({"pull", "0x100000001"}),
            failure("\"0x100000001\" is not a RegistryID; hidutil list prints them"));
}

TEST(ArgumentErrors, ARequestThatIsTooLongIsNotSent) {
  const std::string product(70'000, 'x');
  EXPECT_EQ(
      hidutil({"list", "--matching", "{\"Product\":\"" + product + "\"}"}),
      failure("the request is too long (70044 bytes of at most 65536); ask for less at once"));
}

TEST(ArgumentErrors, ASocketPathHasToFit) {
  EXPECT_EQ(
      test::run({hidutilProgram, "--socket", "", "list"}),
      failure("the socket path \"\" is not usable; give one of 1 to 107 bytes with --socket"));
  EXPECT_EQ(test::run({hidutilProgram, "--socket", std::string(108, 's'), "list"}),
            failure("the socket path \"" + std::string(108, 's') +
                    "\" is not usable; give one of 1 to 107 bytes with --socket"));
}

TEST(ArgumentErrors, OfTheServiceEndWithStatus64) {
  const auto wrong = [](const std::string& message) {
    return test::Outcome{64, "", "zephlin-hidd: " + message + "; see zephlin-hidd --help\n"};
  };
  EXPECT_EQ(test::run({serviceProgram, "--virtual-keyboards", "257"}),
            wrong("--virtual-keyboards takes a number from 0 to 256, not \"257\""));
  EXPECT_EQ(test::run({serviceProgram, "--tap-gap", "51"}),
            wrong("--tap-gap takes a number from 0 to 50, not \"51\""));
  EXPECT_EQ(test::run({serviceProgram, "start\n"}), wrong(R"(unknown argument "start\x0a")"));
  EXPECT_EQ(test::run({serviceProgram, "--socket"}), wrong("option --socket needs a value"));
}

}  // namespace
}  // namespace zephlin
