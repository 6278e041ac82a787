#include <gtest/gtest.h>

#include <vector>

#include "Platform/Linux/Windows/FixedDigitLine.h"

namespace zephlin {
namespace {

using Pieces = std::vector<FixedDigitLine::Piece>;

/// A font whose 1 is narrow and whose 8 is wide.
qreal advance(const QString& text) {
  qreal width = 0;
  for (const QChar character : text) {
    width += character == u'1' ? 4 : character == u'8' ? 10 : 8;
  }
  return width;
}

FixedDigitLine line(const QString& text) {
  return {text, advance};
}

TEST(FixedDigitLine, EveryDigitIsAsWideAsTheWidest) {
  for (const char* digits : {"1", "8", "0"}) {
    EXPECT_EQ(line(digits).width(), 10) << digits;
  }
  EXPECT_EQ(line("11 ms").width(), line("88 ms").width());
  EXPECT_EQ(line("2048").width(), 40);
}

TEST(FixedDigitLine, ADigitStandsInTheMiddleOfItsPlace) {
  EXPECT_EQ(line("181").pieces(), (Pieces{{"1", 3}, {"8", 10}, {"1", 23}}));
}

TEST(FixedDigitLine, WordsKeepTheirWidthAndStayWhole) {
  EXPECT_EQ(line("in 12 ms").pieces(), (Pieces{{"in ", 0}, {"1", 27}, {"2", 35}, {" ms", 44}}));
  EXPECT_EQ(line("in 12 ms").width(), 24 + 20 + 24);
}

TEST(FixedDigitLine, AnEmptyTextHasNoPieces) {
  EXPECT_EQ(line("").pieces(), Pieces());
  EXPECT_EQ(line("").width(), 0);
}

}  // namespace
}  // namespace zephlin
