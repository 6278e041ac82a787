#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "KeyboardService/Protocol/Keyboard.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

const Keyboard tastyKeys{
    RegistryID{0x10000046a}, {1, 6, 1133, 49948, "Tasty Keys", "USB", "seat0"}, "default"};

std::string errorOf(const std::string& text) {
  return requestErrorOf([&] { parseMatching(text); });
}

TEST(Matching, AnEmptyObjectMatchesEveryKeyboard) {
  EXPECT_TRUE(parseMatching("{}").matches(tastyKeys));
  EXPECT_TRUE(parseMatching("{}").matches({}));
}

TEST(Matching, EveryKeyIsCompared) {
  for (const char* const text :
       {R"({"PrimaryUsagePage":1})", R"({"PrimaryUsage":6})", R"({"VendorID":1133})",
        R"({"ProductID":49948})", R"({"Product":"Tasty Keys"})", R"({"RegistryID":"10000046a"})"}) {
    EXPECT_TRUE(parseMatching(text).matches(tastyKeys)) << text;
  }
  for (const char* const text :
       {R"({"PrimaryUsagePage":2})", R"({"PrimaryUsage":7})", R"({"VendorID":-1133})",
        R"({"ProductID":0})", R"({"Product":"tasty keys"})", R"({"RegistryID":"10000046b"})"}) {
    EXPECT_FALSE(parseMatching(text).matches(tastyKeys)) << text;
  }
}

TEST(Matching, AllKeysHaveToAgree) {
  EXPECT_TRUE(
      parseMatching(R"( {"PrimaryUsagePage" : 1, "PrimaryUsage" : 6} )").matches(tastyKeys));
  EXPECT_FALSE(parseMatching(R"({"PrimaryUsagePage":1,"PrimaryUsage":7})").matches(tastyKeys));
}

TEST(Matching, WhatIsNotAMatchingIsRefusedWithTheReason) {
  const std::string example =
      R"(; expected an object such as {"PrimaryUsagePage":1,"PrimaryUsage":6})";
  const std::vector<std::pair<std::string, std::string>> refusals{
      {R"({"Colour":1})",
       "unknown matching key \"Colour\"; known keys are PrimaryUsagePage, PrimaryUsage, VendorID, "
       "ProductID, Product, RegistryID"},
      {R"({"vendorid":1})",
       "unknown matching key \"vendorid\"; known keys are PrimaryUsagePage, PrimaryUsage, "
       "VendorID, "
       "ProductID, Product, RegistryID"},
      {R"({"Product":"ü"x})", "--matching is not valid JSON (at character 15)" + example},
      {"", "--matching is not valid JSON (at character 1)" + example},
      {"{} {}", "--matching is not valid JSON (at character 4)" + example},
      {std::string("{}\0{}", 5), "--matching is not valid JSON (at character 3)" + example},
      {"{\"Product\":\"\xff\"}", "--matching is not valid JSON (at character 13)" + example},
      {"[1]", "--matching is not an object" + example},
      {R"({"VendorID":1,"VendorID":2})", "--matching names \"VendorID\" twice" + example},
      {R"({"VendorID":1e999})", "--matching has a number that is out of range" + example},
      {R"({"Product":1})", R"(matching key "Product" must be text, such as "Virtual Keyboard 1")"}};
  for (const auto& [text, refusal] : refusals) {
    EXPECT_EQ(errorOf(text), refusal);
  }
}

TEST(Matching, NumbersHaveToBeWholeAndFit) {
  for (const char* const number :
       {"1.5", "1.0", "1e2", "\"1\"", "null", "true", "[1]", "{}", "9223372036854775808",
        "-9223372036854775809", "99999999999999999999999999"}) {
    EXPECT_EQ(errorOf("{\"VendorID\":" + std::string(number) + "}"),
              "matching key \"VendorID\" must be a whole number from -9223372036854775808 to "
              "9223372036854775807")
        << number;
  }
  EXPECT_EQ(parseMatching(R"({"VendorID":-9223372036854775808})").vendorID, INT64_MIN);
  EXPECT_EQ(parseMatching(R"({"VendorID":9223372036854775807})").vendorID, INT64_MAX);
}

TEST(Matching, ARegistryIDHasToBeAsListed) {
  for (const char* const id : {"4294967297", "\"0x100000001\"", "\"10000046A\"", "\"0100000001\"",
                               "\"\"", "\"-1\"", "\"10000000000000000\"", "\"1 \""}) {
    EXPECT_EQ(
        errorOf("{\"RegistryID\":" + std::string(id) + "}"),
        R"(matching key "RegistryID" must be text as hidutil list prints it, such as "100000001")")
        << id;
  }
}

TEST(Matching, SurvivesTheWayToTheService) {
  const Matching matching =
      parseMatching(R"({"PrimaryUsagePage":1,"PrimaryUsage":6,"VendorID":-3,"ProductID":4,)"
                    R"("Product":"a\"\n\u0000b","RegistryID":"ffffffffffffffff"})");
  EXPECT_EQ(matchingFromJson(toJson(matching)), matching);
  EXPECT_EQ(matchingFromJson(toJson(Matching{})), Matching{});
}

}  // namespace
}  // namespace zephlin
