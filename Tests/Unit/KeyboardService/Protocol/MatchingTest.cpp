#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "KeyboardService/Protocol/Keyboard.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

const Keyboard tastyKeys{RegistryID{0x10000046a}, {1, 6, 1133, 49948, "Tasty Keys", "USB"}};

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

TEST(Matching, AnUnknownKeyIsRefusedByName) {
  EXPECT_EQ(errorOf(R"({"Colour":1})"),
            "unknown matching key \"Colour\"; known keys are PrimaryUsagePage, PrimaryUsage, "
            "VendorID, ProductID, Product, RegistryID");
  EXPECT_EQ(errorOf(R"({"vendorid":1})").find("unknown matching key \"vendorid\""), 0U);
}

TEST(Matching, BrokenJsonIsRefusedWithItsPlace) {
  EXPECT_EQ(errorOf(R"({"Product":"ü"x})"),
            "--matching is not valid JSON (at character 15); expected an object such as "
            R"({"PrimaryUsagePage":1,"PrimaryUsage":6})");
  EXPECT_EQ(errorOf("").find("--matching is not valid JSON (at character 1)"), 0U);
  EXPECT_EQ(errorOf("{} {}").find("--matching is not valid JSON (at character 4)"), 0U);
  EXPECT_EQ(errorOf(std::string("{}\0{}", 5)).find("--matching is not valid JSON"), 0U);
  EXPECT_EQ(errorOf("{\"Product\":\"\xff\"}").find("--matching is not valid JSON"), 0U);
}

TEST(Matching, AnotherKindOfJsonIsRefused) {
  EXPECT_EQ(errorOf("[1]"),
            "--matching is not an object; expected an object such as "
            R"({"PrimaryUsagePage":1,"PrimaryUsage":6})");
}

TEST(Matching, AKeyGivenTwiceIsRefused) {
  EXPECT_EQ(errorOf(R"({"VendorID":1,"VendorID":2})").find("--matching names \"VendorID\" twice"),
            0U);
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
  EXPECT_EQ(errorOf(R"({"VendorID":1e999})").find("--matching has a number that is out of range"),
            0U);
  EXPECT_EQ(parseMatching(R"({"VendorID":-9223372036854775808})").vendorID, INT64_MIN);
  EXPECT_EQ(parseMatching(R"({"VendorID":9223372036854775807})").vendorID, INT64_MAX);
}

TEST(Matching, TextsHaveToBeText) {
  EXPECT_EQ(errorOf(R"({"Product":1})"),
            R"(matching key "Product" must be text, such as "Virtual Keyboard 1")");
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
