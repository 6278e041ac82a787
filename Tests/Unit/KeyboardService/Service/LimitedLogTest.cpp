#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KeyboardService/Service/Log.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;

using Lines = std::vector<std::string>;

class LimitedLogTest : public testing::Test {
 protected:
  void writeTimes(int count, const std::string& cause) {
    for (int number = 1; number <= count; ++number) {
      log.during(cause, [&] { log.write(cause + ' ' + std::to_string(number)); });
    }
  }

  void turnUntilThereAre(std::size_t count) {
    const auto deadline = std::chrono::steady_clock::now() + 1min;
    while (lines.size() < count && std::chrono::steady_clock::now() < deadline) {
      sd_event_run(loop.native(), 10'000);
    }
  }

  static constexpr LimitedLog::Limits limits{3, 100ms};

  EventLoop loop;
  Lines lines;
  LimitedLog log{loop, [this](const std::string& line) { lines.push_back(line); }, limits};
};

TEST_F(LimitedLogTest, LinesWithoutACauseAreNotLimited) {
  for (int number = 0; number < 100; ++number) {
    log.write("line");
  }
  EXPECT_EQ(lines.size(), 100U);
}

TEST_F(LimitedLogTest, EachCauseHasItsBurst) {
  writeTimes(5, "a");
  writeTimes(2, "b");
  EXPECT_EQ(lines, (Lines{"a 1", "a 2", "a 3", "b 1", "b 2"}));
}

TEST_F(LimitedLogTest, OneLineSaysHowManyWereLeftOut) {
  writeTimes(40, "a");
  turnUntilThereAre(4);
  EXPECT_EQ(lines.at(3), "37 more lines caused by a left out");
  writeTimes(1, "b");
  EXPECT_EQ(lines.back(), "b 1");
}

TEST_F(LimitedLogTest, ThenThereIsRoomForALineNowAndThen) {
  writeTimes(4, "a");
  turnUntilThereAre(4);
  lines.clear();
  writeTimes(2, "a");
  const bool isLeftOut = lines.empty();  // A line was due, unless the summary has used it.
  turnUntilThereAre(1);
  EXPECT_EQ(lines.front(), isLeftOut ? "2 more lines caused by a left out" : "a 1");
}

TEST_F(LimitedLogTest, AnActionWithinAnotherHasItsOwnCause) {
  log.during("a", [&] {
    writeTimes(5, "b");
    log.write("a 1");
  });
  EXPECT_EQ(lines, (Lines{"b 1", "b 2", "b 3", "a 1"}));
}

TEST_F(LimitedLogTest, TheCauseEndsWithTheActionAlsoIfItThrows) {
  EXPECT_THROW(log.during("a", [] { throw std::runtime_error("oops"); }), std::runtime_error);
  for (int number = 0; number < 10; ++number) {
    log.write("line");
  }
  EXPECT_EQ(lines.size(), 10U);
}

}  // namespace
}  // namespace zephlin
