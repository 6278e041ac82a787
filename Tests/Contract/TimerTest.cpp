#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

using TimerTest = ContractTest;

TEST_F(TimerTest, TicksRepeatAndNoneIsEarly) {
  constexpr double interval = 0.03;
  std::vector<double> ticks;
  const double start = desktop().monotonicSeconds();
  const auto timer = dispatch().scheduleTimer(
      Seconds{interval}, Seconds{}, [&] { ticks.push_back(desktop().monotonicSeconds()); });
  EXPECT_TRUE(runUntil([&] { return ticks.size() == 4; }));
  for (std::size_t tick = 0; tick < ticks.size(); ++tick) {
    EXPECT_GE(ticks[tick] - start, interval * static_cast<double>(tick + 1) - 1e-6) << tick;
  }
}

TEST_F(TimerTest, ATimerWithToleranceIsNeverEarlyEither) {
  constexpr double interval = 0.05;
  double tick = -1;
  const double start = desktop().monotonicSeconds();
  const auto timer = dispatch().scheduleTimer(Seconds{interval}, Seconds{0.05}, [&] {
    tick = tick < 0 ? desktop().monotonicSeconds() : tick;
  });
  EXPECT_TRUE(runUntil([&] { return tick >= 0; }));
  EXPECT_GE(tick - start, interval - 1e-6);
}

TEST_F(TimerTest, ADestroyedTimerTicksNoMore) {
  int ticks = 0;
  auto timer = dispatch().scheduleTimer(Seconds{0.01}, Seconds{}, [&] { ++ticks; });
  EXPECT_TRUE(runUntil([&] { return ticks == 1; }));
  timer.reset();
  settle();
  EXPECT_EQ(ticks, 1);
}

TEST_F(TimerTest, ATimerMayBeDestroyedByItsOwnTick) {
  int ticks = 0;
  const std::string kept = "what the callback holds outlives the destruction";
  std::string seen;
  std::unique_ptr<Timer> timer;
  timer = dispatch().scheduleTimer(Seconds{0.01}, Seconds{}, [&, kept] {
    timer.reset();
    ++ticks;
    seen = kept;
  });
  EXPECT_TRUE(runUntil([&] { return ticks == 1; }));
  settle();
  EXPECT_EQ(ticks, 1);
  EXPECT_EQ(seen, kept);
}

TEST_F(TimerTest, TimersTickByTheirDeadlines) {
  std::string first;
  double firstTick = 0;
  double start = 0;
  // On a busy machine both may be due before the loop has its turn.
  do {
    first.clear();
    start = desktop().monotonicSeconds();
    const auto tick = [&](const char* name) {
      if (first.empty()) {
        first = name;
        firstTick = desktop().monotonicSeconds();
      }
    };
    const auto slow = dispatch().scheduleTimer(Seconds{0.08}, Seconds{}, [&] { tick("slow"); });
    const auto fast = dispatch().scheduleTimer(Seconds{0.03}, Seconds{}, [&] { tick("fast"); });
    EXPECT_TRUE(runUntil([&] { return !first.empty(); }));
  } while (firstTick - start >= 0.08);
  EXPECT_EQ(first, "fast");
}

}  // namespace
}  // namespace zephlin::contract
