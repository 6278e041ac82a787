#include <gtest/gtest.h>

#include "KeyboardService/Protocol/Properties.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

std::string propertyErrorOf(const std::string& text) {
  return requestErrorOf([&] { parseProperties(text); });
}

std::string objectOfProperties(std::size_t count) {
  std::string text;
  for (std::size_t index = 0; index < count; ++index) {
    text += (index == 0 ? "\"K" : ",\"K") + std::to_string(index) + "\":1";
  }
  return '{' + text + '}';
}

TEST(Properties, SeveralKeysAreRead) {
  const PropertySet expected{{"A", -9223372036854775807 - 1}, {"B", 9223372036854775807}};
  EXPECT_EQ(parseProperties(R"({"B":9223372036854775807,"A":-9223372036854775808})"), expected);
}

TEST(Properties, AValueThatIsNoWholeNumberOf64BitsIsRefused) {
  for (const char* const value :
       {"9223372036854775808", "-9223372036854775809", "18446744073709551616", "0.5", "0.0", "1e3",
        "\"0\"", "null", "false", "[]", "{}"}) {
    EXPECT_EQ(propertyErrorOf("{\"A\":" + std::string(value) + "}"),
              "the value of \"A\" must be a whole number from -9223372036854775808 to "
              "9223372036854775807")
        << value;
  }
}

TEST(Properties, AsManyAsAKeyboardHoldsAreTakenAndNoMore) {
  EXPECT_EQ(parseProperties(objectOfProperties(64)).size(), 64U);
  EXPECT_EQ(propertyErrorOf(objectOfProperties(65)),
            "too many properties (65); a keyboard holds at most 64");
}

TEST(Properties, AKeyIsPrintableAsciiWithoutSpaces) {
  EXPECT_NO_THROW(requirePropertyKey("!~CapsLockDelayOverride"));
  EXPECT_NO_THROW(requirePropertyKey(std::string(128, 'k')));
  for (const std::string& key :
       {std::string(), std::string(129, 'k'), std::string("a b"), std::string("a\n"),
        std::string("é"), std::string("\x7f"), std::string("a\0b", 3)}) {
    EXPECT_THROW(requirePropertyKey(key), RequestError) << key;
  }
  EXPECT_EQ(requestErrorOf([] { requirePropertyKey("a b"); }),
            "property key \"a b\" is not valid; a key is 1 to 128 printable ASCII characters, no "
            "spaces");
}

TEST(Properties, WhatIsNotAnObjectOfPropertiesIsRefusedWithTheReason) {
  const std::vector<std::pair<const char*, const char*>> refusals{
      {R"({"a b":1})", R"(property key "a b" is not valid)"},
      {R"({"":1})", R"(property key "" is not valid)"},
      {R"({"\u001b[2J":1})", R"(property key "\x1b[2J" is not valid)"},
      {"{}", R"(no property to set; expected an object such as {"CapsLockDelayOverride":0})"},
      {"{A:0}",
       "--set is not valid JSON (at character 2); expected an object such as "
       R"({"CapsLockDelayOverride":0})"},
      {"0", "--set is not an object"},
      {R"({"A":1,"A":1})", R"(--set names "A" twice)"}};
  for (const auto& [text, refusal] : refusals) {
    EXPECT_TRUE(propertyErrorOf(text).starts_with(refusal)) << text;
  }
}

std::optional<std::chrono::milliseconds> delayOf(std::int64_t value) {
  return capsLockDelay({{"Another", 3}, {"CapsLockDelayOverride", value}});
}

TEST(CapsLockDelay, IsHowLongTheKeyMustBeHeld) {
  for (const std::int64_t value : {0, 1, 74, 76, 60'000}) {
    EXPECT_EQ(delayOf(value), std::chrono::milliseconds(value));
  }
}

TEST(CapsLockDelay, TheSystemsOwnBehaviourIsLeftAlone) {
  EXPECT_EQ(capsLockDelay({}), std::nullopt);
  EXPECT_EQ(capsLockDelay({{"Another", 0}}), std::nullopt);
  for (const std::int64_t value : {std::int64_t{75}, std::int64_t{-1}, INT64_MIN}) {
    EXPECT_EQ(delayOf(value), std::nullopt) << value;
  }
}

TEST(CapsLockDelay, ALongerOneThanAKeyboardCarriesIsRefused) {
  EXPECT_NO_THROW(requireCapsLockDelayInRange({{"CapsLockDelayOverride", 60'000}}));
  EXPECT_NO_THROW(requireCapsLockDelayInRange({{"Another", INT64_MAX}}));
  for (const std::int64_t value : {std::int64_t{60'001}, INT64_MAX}) {
    EXPECT_EQ(requestErrorOf([value] {
                requireCapsLockDelayInRange({{"CapsLockDelayOverride", value}});
              }),
              "CapsLockDelayOverride can be at most 60000 on this keyboard");
  }
}

}  // namespace
}  // namespace zephlin
