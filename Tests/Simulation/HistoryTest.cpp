#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>

#include "Tests/Simulation/History.h"
#include "Tests/Simulation/HistoryRunner.h"

namespace zephlin {
namespace {

TEST(HistoryTest, IsReadAsItIsWritten) {
  const History history = {{12'500, "plug"}, {13'000, "click Instant Caps Lock"}};
  EXPECT_EQ(textOf(history), "@12.500 plug\n@13.000 click Instant Caps Lock\n");
  EXPECT_EQ(parseHistory(textOf(history)), history);
}

TEST(HistoryTest, SkipsRemarksAndSortsByTime) {
  const History expected = {{1000, "plug"}, {2000, "wake 5"}};
  EXPECT_EQ(parseHistory("# first this\n\n@2 wake 5\n@1 plug\n"), expected);
}

TEST(HistoryTest, RefusesWhatIsNoEvent) {
  for (const char* text : {"plug", "@ plug", "@-1 plug", "@1", "@1 "}) {
    EXPECT_THROW(parseHistory(text), std::invalid_argument) << text;
  }
  EXPECT_THROW(runHistory({{0, "no such action"}}), std::invalid_argument);
}

TEST(HistoryTest, IsTheSameForTheSameSeedAndSurvivesItsTextForm) {
  const History history = generateHistory(7, 1);
  EXPECT_EQ(generateHistory(7, 1), history);
  EXPECT_NE(generateHistory(8, 1), history);
  EXPECT_EQ(parseHistory(textOf(history)), history);
}

TEST(HistoryTest, HasAnEventEachMinuteOrSo) {
  const auto events = generateHistory(3, 7).size();
  EXPECT_GT(events, 7U * 1440U * 3 / 4);
  EXPECT_LT(events, 7U * 1440U * 5 / 4);
}

TEST(HistoryShrinkerTest, FindsTheEventsThatMatterTogether) {
  const auto fails = [](const History& history) {
    std::set<std::string> actions;
    for (const HistoryEvent& event : history) {
      actions.insert(event.action);
    }
    return actions.contains("17") && actions.contains("400") && actions.contains("999");
  };
  History history;
  for (std::int64_t i = 0; i < 1000; ++i) {
    history.push_back({i, std::to_string(i)});
  }
  const History expected = {{17, "17"}, {400, "400"}, {999, "999"}};
  EXPECT_EQ(shrinkHistory(history, fails), expected);
}

TEST(HistoryShrinkerTest, LeavesNothingWhereNothingMatters) {
  EXPECT_EQ(shrinkHistory({{1, "plug"}}, [](const History&) { return true; }), History{});
}

}  // namespace
}  // namespace zephlin
