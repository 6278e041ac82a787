#include <gtest/gtest.h>

#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {
namespace {

using State = LineSplitter::State;

TEST(LineSplitter, YieldsLinesInOrderWithoutTheirLineFeeds) {
  LineSplitter splitter(10);
  splitter.append("one\n\ntwo\nrest");
  EXPECT_EQ(splitter.takeLine(), "one");
  EXPECT_EQ(splitter.takeLine(), "");
  EXPECT_EQ(splitter.takeLine(), "two");
  EXPECT_EQ(splitter.state(), State::NeedsBytes);
  EXPECT_TRUE(splitter.hasPartialLine());
  splitter.append("\n");
  EXPECT_FALSE(splitter.hasPartialLine());
  EXPECT_EQ(splitter.takeLine(), "rest");
  EXPECT_FALSE(splitter.hasPartialLine());
}

TEST(LineSplitter, ALineOfExactlyTheLimitIsFine) {
  LineSplitter splitter(3);
  splitter.append("abc");
  EXPECT_EQ(splitter.state(), State::NeedsBytes);
  splitter.append("\n");
  EXPECT_EQ(splitter.state(), State::HasLine);
  EXPECT_EQ(splitter.takeLine(), "abc");
}

TEST(LineSplitter, OneByteMoreIsTooLongForGood) {
  LineSplitter splitter(3);
  splitter.append("abcd");
  EXPECT_EQ(splitter.state(), State::LineTooLong);
  splitter.append("\nok\n");
  EXPECT_EQ(splitter.state(), State::LineTooLong);
}

TEST(LineSplitter, LinesBeforeATooLongOneAreStillYielded) {
  LineSplitter splitter(3);
  splitter.append("ab\nabcd\n");
  EXPECT_EQ(splitter.takeLine(), "ab");
  EXPECT_EQ(splitter.state(), State::LineTooLong);
}

TEST(LineSplitter, KeepsEveryByteButTheLineFeed) {
  LineSplitter splitter(10);
  splitter.append(std::string_view("a\0\r\xff\n", 5));
  EXPECT_EQ(splitter.takeLine(), std::string("a\0\r\xff", 4));
}

}  // namespace
}  // namespace zephlin
