#include <gtest/gtest.h>

#include "Platform/Linux/Session/LogEntry.h"

namespace zephlin {
namespace {

TEST(LogEntryTest, APlainTextStaysAsItIs) {
  EXPECT_EQ(logEntry("Zephlin: größer\t…", 100), "Zephlin: größer\t…");
  EXPECT_EQ(logEntry("", 100), "");
}

TEST(LogEntryTest, FurtherLinesAreIndentedAndTheLastLineFeedsAreNotKept) {
  EXPECT_EQ(logEntry("first\nZephlin: second\n\n", 100), "first\n    Zephlin: second");
  EXPECT_EQ(logEntry("\n\r\n", 100), "");
}

TEST(LogEntryTest, OtherControlCharactersCannotReachATerminal) {
  EXPECT_EQ(logEntry(std::string("a\0b\x1b[2Jc\rd\x7f", 11), 100), "a?b?[2Jc?d?");
}

TEST(LogEntryTest, WhatIsTooLongIsCutBetweenCharacters) {
  EXPECT_EQ(logEntry("12345678", 8), "12345678");
  EXPECT_EQ(logEntry("123456789", 8), "12345…");
  EXPECT_EQ(logEntry("1234äöü", 8), "1234…");
  EXPECT_EQ(logEntry(std::string(1000000, '\n') + "x", 4095).size(), 4095U);
}

}  // namespace
}  // namespace zephlin
