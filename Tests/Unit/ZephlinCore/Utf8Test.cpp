#include <gtest/gtest.h>

#include <string>

#include "ZephlinCore/Utf8.h"

namespace zephlin {
namespace {

using namespace std::string_view_literals;

TEST(Utf8, TheFirstAndLastCharacterOfEachLengthAreValid) {
  for (const std::string_view text :
       {"\0"sv, "\x7F"sv, "\xC2\x80"sv, "\xDF\xBF"sv, "\xE0\xA0\x80"sv, "\xEF\xBF\xBF"sv,
        "\xF0\x90\x80\x80"sv, "\xF4\x8F\xBF\xBF"sv, "\xED\x9F\xBF"sv, "\xEE\x80\x80"sv}) {
    EXPECT_TRUE(isValidUtf8(text));
    EXPECT_TRUE(isValidUtf8("a" + std::string(text) + "⇪ b"));
    EXPECT_EQ(isValidUtf8(text.substr(0, text.size() - 1)), text.size() == 1);
  }
}

TEST(Utf8, OverlongFormsSurrogatesAndNumbersBeyondTheLastAreInvalid) {
  for (const std::string_view text :
       {"\xC0\x80"sv, "\xC1\xBF"sv, "\xE0\x9F\xBF"sv, "\xF0\x8F\xBF\xBF"sv, "\xED\xA0\x80"sv,
        "\xED\xBF\xBF"sv, "\xF4\x90\x80\x80"sv, "\xF5\x80\x80\x80"sv, "\xFF"sv}) {
    EXPECT_FALSE(isValidUtf8(text));
  }
}

TEST(Utf8, AStrayContinuationOrAMissingOneIsInvalid) {
  for (const std::string_view text : {"\x80"sv, "a\xBF"sv, "\xC3"sv, "\xC3(\xA9"sv, "\xE2\x82"sv,
                                      "\xE2\x82z"sv, "\xF0\x9F\x98z"sv}) {
    EXPECT_FALSE(isValidUtf8(text));
  }
}

}  // namespace
}  // namespace zephlin
