#include <gtest/gtest.h>

#include "Tests/CLI/KeyboardService/RunningService.h"

namespace zephlin {
namespace {

using Arguments = std::vector<std::string>;

/// Runs hidutil where there is no service: errors in the arguments are reported all the same.
test::Outcome hidutil(Arguments arguments) {
  const test::TemporaryDirectory directory;
  arguments.insert(arguments.begin(), {hidutilProgram, "--socket", directory.file("absent")});
  return test::run(arguments);
}

test::Outcome hidutilSocket(const std::string& path) {
  return test::run({hidutilProgram, "--socket", path, "list"});
}

test::Outcome usageFailure(const std::string& message) {
  return {64, "", "hidutil: " + message + "; see hidutil --help\n"};
}

struct ArgumentError {
  Arguments arguments;
  std::string message;
};

const std::string exampleMatching =
    R"(; expected an object such as {"PrimaryUsagePage":1,"PrimaryUsage":6})";
const std::string exampleSet = R"(; expected an object such as {"CapsLockDelayOverride":0})";
const std::string knownKeys =
    "; known keys are PrimaryUsagePage, PrimaryUsage, VendorID, ProductID, Product, RegistryID";
const std::string wholeNumber =
    " must be a whole number from -9223372036854775808 to 9223372036854775807";
const std::string keyRule =
    " is not valid; a key is 1 to 128 printable ASCII characters, no spaces";

TEST(ArgumentErrors, WrongUsageEndsWithStatus64) {
  EXPECT_EQ(test::run({hidutilProgram}), usageFailure("no command given"));
  const std::vector<ArgumentError> errors{
      {{"help"}, "unknown command \"help\""},
      {{"\x1b[2J\nmore"}, R"(unknown command "\x1b[2J\x0amore")"},
      {{"list", "--colour"}, "unknown option \"--colour\""},
      {{"list", "more"}, "unexpected argument \"more\""},
      {{"property", "--get"}, "option --get needs a value"},
      {{"pull"}, "\"pull\" needs a RegistryID"},
      {{"property"}, "\"property\" needs either --get or --set"},
      {{"property", "--get", "A", "--set", "{\"A\":1}"},
       "\"property\" needs either --get or --set"}};
  for (const auto& [arguments, message] : errors) {
    EXPECT_EQ(hidutil(arguments), usageFailure(message));
  }
}

TEST(ArgumentErrors, AValueThatIsNotValidEndsWithStatus1) {
  const std::string longKey(129, 'k');
  const std::vector<ArgumentError> errors{
      {{"list", "--matching", R"({"\u001b\n":1})"},
       R"(unknown matching key "\x1b\x0a")" + knownKeys},
      {{"list", "--matching", R"({"ProductID":})"},
       "--matching is not valid JSON (at character 14)" + exampleMatching},
      {{"list", "--matching", "[]"}, "--matching is not an object" + exampleMatching},
      {{"property", "--get", "A", "--matching", R"({"Colour":1})"},
       "unknown matching key \"Colour\"" + knownKeys},
      {{"list", "--matching", R"({"VendorID":"1"})"}, "matching key \"VendorID\"" + wholeNumber},
      {{"list", "--matching", R"({"Product":1})"},
       R"(matching key "Product" must be text, such as "Virtual Keyboard 1")"},
      {{"list", "--matching", R"({"RegistryID":"0x1"})"},
       R"(matching key "RegistryID" must be text as hidutil list prints it, such as "100000001")"},
      {{"property", "--set", "CapsLockDelayOverride=0"},
       "--set is not valid JSON (at character 1)" + exampleSet},
      {{"property", "--set", "{}"}, "no property to set" + exampleSet},
      {{"property", "--set", R"({"A":1e999})"},
       "--set has a number that is out of range" + exampleSet},
      {{"property", "--get", ""}, "property key \"\"" + keyRule},
      {{"property", "--get", "a b"}, "property key \"a b\"" + keyRule},
      {{"property", "--get", longKey}, "property key \"" + longKey + "\"" + keyRule},
      {{"property", "--set", R"({"é":1})"}, "property key \"é\"" + keyRule},
      {{"pull", "0x100000001"}, "\"0x100000001\" is not a RegistryID; hidutil list prints them"},
      {{"list", "--matching", "{\"Product\":\"" + std::string(70'000, 'x') + "\"}"},
       "the request is too long (70044 bytes of at most 65536); ask for less at once"}};
  for (const auto& [arguments, message] : errors) {
    EXPECT_EQ(hidutil(arguments), failure(message));
  }
}

TEST(ArgumentErrors, SetTakesWholeNumbers) {
  const std::string manyDigits = '1' + std::string(60, '0');
  for (const char* const value : {"9223372036854775808", "-9223372036854775809", manyDigits.c_str(),
                                  "0.5", "\"0\"", "true", "null"}) {
    EXPECT_EQ(hidutil({"property", "--set", "{\"A\":" + std::string(value) + "}"}),
              failure("the value of \"A\"" + wholeNumber))
        << value;
  }
}

TEST(ArgumentErrors, ASocketPathHasToFit) {
  EXPECT_EQ(hidutilSocket("/absent\n/s"), absence(R"(/absent\x0a/s)", "No such file or directory"));
  for (const std::string& path : {std::string(), std::string(108, 's')}) {
    EXPECT_EQ(hidutilSocket(path),
              failure("the socket path \"" + path +
                      "\" is not usable; give one of 1 to 107 bytes with --socket"));
  }
}

TEST(ArgumentErrors, OfTheServiceEndWithStatus64) {
  const std::vector<ArgumentError> errors{
      {{"--virtual-keyboards", "257"},
       "--virtual-keyboards takes a number from 0 to 256, not \"257\""},
      {{"--tap-gap", "51"}, "--tap-gap takes a number from 0 to 50, not \"51\""},
      {{"start\n"}, R"(unknown argument "start\x0a")"},
      {{"--socket"}, "option --socket needs a value"}};
  for (auto [arguments, message] : errors) {
    arguments.insert(arguments.begin(), serviceProgram);
    EXPECT_EQ(test::run(arguments),
              (test::Outcome{64, "", "zephlin-hidd: " + message + "; see zephlin-hidd --help\n"}));
  }
}

}  // namespace
}  // namespace zephlin
