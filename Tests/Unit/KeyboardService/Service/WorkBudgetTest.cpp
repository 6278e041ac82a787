#include <gtest/gtest.h>

#include "KeyboardService/Service/Server.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;

constexpr WorkBudget::Time start = 1h;
constexpr WorkBudget::Time before = 5s;  ///< What the thread had worked by then.

class StartedBudget : public testing::Test {
 protected:
  StartedBudget() { budget.rest(start, before); }

  WorkBudget budget;
};

TEST_F(StartedBudget, ALittleWorkNeedsNoRest) {
  EXPECT_EQ(budget.rest(start + 10ms, before + 10ms), 0ms);
  EXPECT_EQ(budget.rest(start + 19ms, before + 19ms), 0ms);
}

TEST_F(StartedBudget, ABurstIsFollowedByAsMuchRest) {
  EXPECT_EQ(budget.rest(start + 10ms, before + 10ms), 0ms);
  EXPECT_EQ(budget.rest(start + 23ms, before + 23ms), 23ms);
  EXPECT_EQ(budget.rest(start + 40ms, before + 23ms), 6ms);
  EXPECT_EQ(budget.rest(start + 46ms, before + 23ms), 0ms);
  EXPECT_EQ(budget.rest(start + 56ms, before + 33ms), 0ms);
}

TEST_F(StartedBudget, WorkForHalfOfTheTimeNeedsNoRest) {
  for (int count = 1; count < 1000; ++count) {
    EXPECT_EQ(budget.rest(start + count * 10ms, before + count * 5ms), 0ms) << count;
  }
}

TEST_F(StartedBudget, TimeWithoutWorkIsNotSavedUp) {
  EXPECT_EQ(budget.rest(start + 10s, before), 0ms);
  EXPECT_EQ(budget.rest(start + 10s + 30ms, before + 30ms), 30ms);
}

}  // namespace
}  // namespace zephlin
