#include <gtest/gtest.h>

#include <limits>

#include "ZephlinCore/HidUtilOutputParser.h"

namespace zephlin {
namespace {

using Rows = std::vector<HidPropertyRow>;

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

TEST(HidUtilOutputParser, EmptyTextGivesNoRow) {
  EXPECT_EQ(parse(""), Rows());
}

TEST(HidUtilOutputParser, TextOfLineFeedsAndSpacesGivesNoRow) {
  EXPECT_EQ(parse("\n\n   \n \n"), Rows());
}

TEST(HidUtilOutputParser, LinesThatAreDroppedTakeNoMemory) {
  std::string text;
  for (int line = 0; line < 1000; ++line) {
    text += "a b x\n";
  }
  EXPECT_EQ(parse(text).capacity(), 0U);
  EXPECT_LE(parse(text + "a b 0\nc d 0\n" + text).capacity(), 4U);
}

TEST(HidUtilOutputParser, TheHeaderAloneGivesNoRow) {
  EXPECT_EQ(parse("RegistryID   Key                     Value\n"), Rows());
  // Its first column alone makes a line the header.
  EXPECT_EQ(parse("RegistryID Key 12\n"), Rows());
}

TEST(HidUtilOutputParser, AHeaderIsDroppedWhereverItIs) {
  EXPECT_EQ(parse("a key 1\nRegistryID Key 2\nb key 3\n"), (Rows{{"a", 1}, {"b", 3}}));
}

TEST(HidUtilOutputParser, TheSecondColumnIsNotLookedAt) {
  EXPECT_EQ(parse("a anything 12\n"), (Rows{{"a", 12}}));
  EXPECT_EQ(parse("a RegistryID 12\n"), (Rows{{"a", 12}}));
}

TEST(HidUtilOutputParser, ColumnsAfterTheThirdAreIgnored) {
  EXPECT_EQ(parse("a key 12 further words 0x13\n"), (Rows{{"a", 12}}));
}

TEST(HidUtilOutputParser, ALineOfTwoColumnsIsDropped) {
  EXPECT_EQ(parse("a key \n"), Rows());
}

TEST(HidUtilOutputParser, APlusSignIsAllowedAndALoneSignDropsTheLine) {
  EXPECT_EQ(parse("a key +7\n"), (Rows{{"a", 7}}));
  EXPECT_EQ(parse("a key -7\n"), (Rows{{"a", -7}}));
  for (const char* text : {"a key +\n", "a key -\n", "a key +-7\n", "a key -+7\n", "a key ++7\n"}) {
    EXPECT_EQ(parse(text), Rows()) << text;
  }
}

TEST(HidUtilOutputParser, LeadingZerosDoNotMakeAValueOctal) {
  EXPECT_EQ(parse("a key 00075\nb key 010\nc key -010\n"),
            (Rows{{"a", 75}, {"b", 10}, {"c", -10}}));
}

TEST(HidUtilOutputParser, AValueMustFitSixtyFourBits) {
  using Limits = std::numeric_limits<std::int64_t>;
  EXPECT_EQ(parse("a key 9223372036854775807\n"), (Rows{{"a", Limits::max()}}));
  EXPECT_EQ(parse("a key -9223372036854775808\n"), (Rows{{"a", Limits::min()}}));
  EXPECT_EQ(parse("a key 9223372036854775808\n"), Rows());
  EXPECT_EQ(parse("a key -9223372036854775809\n"), Rows());
}

TEST(HidUtilOutputParser, WhatIsNoDecimalIntegerDropsTheLine) {
  for (const char* text : {"a key 0x4b\n", "a key 1.0\n", "a key 12a\n", "a key 1e3\n",
                           "a key \xD9\xA1\n", "a key 1,000\n"}) {
    EXPECT_EQ(parse(text), Rows()) << text;
  }
}

TEST(HidUtilOutputParser, WhatFollowsTheDigitsDropsTheLine) {
  for (const char byte : {'\r', '\t', '\v', '\0'}) {
    EXPECT_EQ(parse(std::string("a key 12") + byte), Rows()) << int{byte};
    EXPECT_EQ(parse(std::string("a key 12") + byte + " word\n"), Rows()) << int{byte};
    EXPECT_EQ(parse(std::string("a key (null)") + byte), Rows()) << int{byte};
  }
}

TEST(HidUtilOutputParser, BothNullMarkersGiveAnAbsentValue) {
  EXPECT_EQ(parse("a key (null)\nb key <null>\n"),
            (Rows{{"a", std::nullopt}, {"b", std::nullopt}}));
}

TEST(HidUtilOutputParser, ANullMarkerInCapitalsDropsTheLine) {
  EXPECT_EQ(parse("a key (NULL)\nb key <Null>\nc key null\n"), Rows());
}

TEST(HidUtilOutputParser, ALowerCaseHeaderWordIsARegistryIdentifier) {
  EXPECT_EQ(parse("registryid key 3\n"), (Rows{{"registryid", 3}}));
}

TEST(HidUtilOutputParser, AWordThatContainsTheHeaderWordIsARegistryIdentifier) {
  EXPECT_EQ(parse("RegistryIDs key 1\nxRegistryID key 2\nRegistry key 3\n"),
            (Rows{{"RegistryIDs", 1}, {"xRegistryID", 2}, {"Registry", 3}}));
}

TEST(HidUtilOutputParser, NoWhitespaceButSpacesSeparatesColumns) {
  for (const std::string separator : {"\t", "\v", "\f", "\u00A0"}) {
    EXPECT_EQ(parse("a" + separator + "key" + separator + "12\n"), Rows()) << separator;
    EXPECT_EQ(parse("a" + separator + "b key 12\n"), (Rows{{"a" + separator + "b", 12}}));
    EXPECT_EQ(parse(separator + "a key 12\n"), (Rows{{separator + "a", 12}}));
    EXPECT_EQ(parse("a key " + separator + "12\n"), Rows()) << separator;
  }
}

TEST(HidUtilOutputParser, SpacesAroundAndBetweenColumnsVanish) {
  EXPECT_EQ(parse("   a    key    12   \n"), (Rows{{"a", 12}}));
}

TEST(HidUtilOutputParser, TheLastLineNeedsNoLineFeed) {
  EXPECT_EQ(parse("a key 1\nb key 2"), (Rows{{"a", 1}, {"b", 2}}));
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

TEST(HidUtilOutputParser, EqualRegistryIdentifiersAreKeptApart) {
  EXPECT_EQ(parse("a key 1\na key 1\n"), (Rows{{"a", 1}, {"a", 1}}));
}

}  // namespace
}  // namespace zephlin
