#include <gtest/gtest.h>

#include <limits>

#include "ZephlinCore/HidUtilOutputParser.h"

namespace zephlin {
namespace {

using Rows = std::vector<HidPropertyRow>;
using Limits = std::numeric_limits<std::int64_t>;

Rows parse(std::string_view text) {
  return HidUtilOutputParser::parse(text);
}

TEST(HidUtilOutputParser, AListingGivesARowForEachReadableLineInOrder) {
  const Rows expected = {
      {"10000046a", 0}, {"1000004a2", 75}, {"1000004c1", std::nullopt}, {"1000004d7", -1}};
  EXPECT_EQ(parse("RegistryID   Key                     Value\n"
                  "10000046a    CapsLockDelayOverride   0\n"
                  "1000004a2    CapsLockDelayOverride   75\n"
                  "1000004c1    CapsLockDelayOverride   (null)\n"
                  "1000004d7    CapsLockDelayOverride   -1\n"
                  "1000004e3    CapsLockDelayOverride\n"
                  "1000004f0    CapsLockDelayOverride   0x4b\n"),
            expected);
}

TEST(HidUtilOutputParser, TextWithoutAReadableLineGivesNoRow) {
  for (const char* text : {
           "",
           "\n\n   \n \n",
           "RegistryID   Key                     Value\n",
           "RegistryID Key 12\n",  // The first column alone makes a line the header.
           "a key \n",
           "a key +\n",
           "a key -\n",
           "a key +-7\n",
           "a key -+7\n",
           "a key ++7\n",
           "a key 9223372036854775808\n",
           "a key -9223372036854775809\n",
           "a key 0x4b\n",
           "a key 1.0\n",
           "a key 12a\n",
           "a key 1e3\n",
           "a key \xD9\xA1\n",
           "a key 1,000\n",
           "a key (NULL)\n",
           "a key <Null>\n",
           "a key null\n",
       }) {
    EXPECT_EQ(parse(text), Rows()) << text;
  }
}

TEST(HidUtilOutputParser, AReadableLineGivesARow) {
  struct Case {
    const char* text;
    HidPropertyRow row;
  };
  for (const auto& [text, row] : {
           // The second column does not matter, nor do those after the third.
           Case{"a anything 12\n", {"a", 12}},
           Case{"a RegistryID 12\n", {"a", 12}},
           Case{"a key 12 further words 0x13\n", {"a", 12}},
           Case{"   a    key    12   \n", {"a", 12}},
           Case{"a key 12", {"a", 12}},
           Case{"a key +7\n", {"a", 7}},
           Case{"a key -7\n", {"a", -7}},
           // Leading zeros do not make a value octal.
           Case{"a key 00075\n", {"a", 75}},
           Case{"a key 010\n", {"a", 10}},
           Case{"a key -010\n", {"a", -10}},
           Case{"a key 9223372036854775807\n", {"a", Limits::max()}},
           Case{"a key -9223372036854775808\n", {"a", Limits::min()}},
           Case{"a key (null)\n", {"a", std::nullopt}},
           Case{"a key <null>\n", {"a", std::nullopt}},
           // Only the whole word makes a header.
           Case{"registryid key 3\n", {"registryid", 3}},
           Case{"RegistryIDs key 1\n", {"RegistryIDs", 1}},
           Case{"xRegistryID key 2\n", {"xRegistryID", 2}},
           Case{"Registry key 3\n", {"Registry", 3}},
       }) {
    EXPECT_EQ(parse(text), Rows{row}) << text;
  }
}

TEST(HidUtilOutputParser, RowsAreInTheOrderOfTheirLines) {
  EXPECT_EQ(parse("a key 1\nRegistryID Key 2\nb key 3\n"), (Rows{{"a", 1}, {"b", 3}}));
  EXPECT_EQ(parse("a key 1\nb key 2"), (Rows{{"a", 1}, {"b", 2}}));
  EXPECT_EQ(parse("a key 1\na key 1\n"), (Rows{{"a", 1}, {"a", 1}}));
}

TEST(HidUtilOutputParser, LinesThatAreDroppedTakeNoMemory) {
  std::string text;
  for (int line = 0; line < 1000; ++line) {
    text += "a b x\n";
  }
  EXPECT_EQ(parse(text).capacity(), 0U);
  EXPECT_LE(parse(text + "a b 0\nc d 0\n" + text).capacity(), 4U);
}

TEST(HidUtilOutputParser, WhatFollowsTheDigitsDropsTheLine) {
  for (const char byte : {'\r', '\t', '\v', '\0'}) {
    EXPECT_EQ(parse(std::string("a key 12") + byte), Rows()) << int{byte};
    EXPECT_EQ(parse(std::string("a key 12") + byte + " word\n"), Rows()) << int{byte};
    EXPECT_EQ(parse(std::string("a key (null)") + byte), Rows()) << int{byte};
  }
}

TEST(HidUtilOutputParser, NoWhitespaceButSpacesSeparatesColumns) {
  for (const std::string separator : {"\t", "\v", "\f", "\u00A0"}) {
    EXPECT_EQ(parse("a" + separator + "key" + separator + "12\n"), Rows()) << separator;
    EXPECT_EQ(parse("a" + separator + "b key 12\n"), (Rows{{"a" + separator + "b", 12}}));
    EXPECT_EQ(parse(separator + "a key 12\n"), (Rows{{separator + "a", 12}}));
    EXPECT_EQ(parse("a key " + separator + "12\n"), Rows()) << separator;
  }
}

TEST(HidUtilOutputParser, TextWithCarriageReturnLineFeedEndsIsOneLine) {
  EXPECT_EQ(parse("RegistryID Key Value\r\na key 1\r\nb key 2\r\n"), Rows());
  // The fourth column swallows the rest.
  EXPECT_EQ(parse("a key 1 x\r\nb key 2 x\r\n"), (Rows{{"a", 1}}));
  // A line end of its own follows the pair.
  EXPECT_EQ(parse("a key 1 x\r\n\nb key 2\n"), (Rows{{"a", 1}, {"b", 2}}));
  // A carriage return elsewhere is a character like any other.
  EXPECT_EQ(parse("a\rb key 1\n"), (Rows{{"a\rb", 1}}));
}

}  // namespace
}  // namespace zephlin
