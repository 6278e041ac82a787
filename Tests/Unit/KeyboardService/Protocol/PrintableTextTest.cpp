#include <gtest/gtest.h>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

TEST(PrintableText, LeavesOrdinaryTextOfAnyScriptAlone) {
  EXPECT_EQ(printable("Grüße, 键盘 ⌨ 😀"), "Grüße, 键盘 ⌨ 😀");
}

TEST(PrintableText, EscapesControlCharacters) {
  EXPECT_EQ(printable(std::string_view("a\nb\t\x1b[31m\x7f\0", 11)),
            R"(a\x0ab\x09\x1b[31m\x7f\x00)");
}

TEST(PrintableText, EscapesWhatDisturbsALineAndBytesThatAreNotUtf8) {
  const std::vector<std::pair<const char*, const char*>> escapes{
      {"\u0085", R"(\xc2\x85)"},
      {"\u2028", R"(\xe2\x80\xa8)"},
      {"\u202e", R"(\xe2\x80\xae)"},
      {"\xff", R"(\xff)"},
      {"\xc3(", R"(\xc3()"},
      {"\xe2\x82", R"(\xe2\x82)"},
      {"\xc0\xaf", R"(\xc0\xaf)"},
      {"\xed\xa0\x80", R"(\xed\xa0\x80)"},
      {"\xf4\x90\x80\x80", R"(\xf4\x90\x80\x80)"},
      {"\xe0\x80\xaf", R"(\xe0\x80\xaf)"}};
  for (const auto& [text, escaped] : escapes) {
    EXPECT_EQ(printable(text), escaped);
  }
}

TEST(PrintableText, CutsWhatIsTooLong) {
  EXPECT_EQ(printable("abcdef", 4), "abcd…");
  EXPECT_EQ(printable("abcd", 4), "abcd");
}

TEST(PrintableText, QuotesShortly) {
  EXPECT_EQ(inQuotes("a b"), "\"a b\"");
  EXPECT_LT(inQuotes(std::string(10'000, 'x')).size(), 200U);
}

}  // namespace
}  // namespace zephlin
