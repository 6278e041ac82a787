#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Platform/Simulated/SimulatedDispatch.h"

namespace zephlin {
namespace {

class SimulatedDispatchTest : public testing::Test {
 protected:
  void noteTime() { times_.push_back(desktop_.now()); }
  std::function<void()> note() {
    return [this] { noteTime(); };
  }
  using Times = std::vector<double>;

  Times times_;
  SimulatedDesktop desktop_;
  SimulatedDispatch& dispatch_ = desktop_.dispatch();
};

TEST_F(SimulatedDispatchTest, DelayedWorkRunsAtItsDeadlineAndNotATickBefore) {
  dispatch_.mainQueue()->postAfter(Seconds{1.0}, note());
  desktop_.runUntil(1.0 - 1e-9);
  EXPECT_EQ(times_, Times{});
  desktop_.runFor(1e-9);
  EXPECT_EQ(times_, Times{1.0});
}

TEST_F(SimulatedDispatchTest, ATimerFiresOncePerInterval) {
  const auto timer = dispatch_.scheduleTimer(Seconds{0.5}, Seconds{0.1}, note());
  desktop_.runUntil(1.6);
  EXPECT_EQ(times_, (Times{0.5, 1.0, 1.5}));
}

TEST_F(SimulatedDispatchTest, ALateTimerStaysWithinItsToleranceAndOnItsGrid) {
  dispatch_.lateness().setTimerShareOfTolerance(0.5);
  const auto timer = dispatch_.scheduleTimer(Seconds{10}, Seconds{2}, note());
  desktop_.runUntil(35);
  EXPECT_EQ(times_, (Times{11, 21, 31}));
}

TEST_F(SimulatedDispatchTest, ATimerThatMissedTicksDoesNotMakeUpForThem) {
  const auto timer = dispatch_.scheduleTimer(Seconds{1}, Seconds{0}, [this] {
    noteTime();
    if (times_.size() == 1) {
      desktop_.loop().blockFor(ticksFromSeconds(3.5));
    }
  });
  desktop_.runUntil(6);
  EXPECT_EQ(times_, (Times{1, 4.5, 5, 6}));
}

TEST_F(SimulatedDispatchTest, LatenessDelaysAndNeverHurries) {
  dispatch_.lateness().setExactly(Seconds{0.25});
  dispatch_.mainQueue()->postAfter(Seconds{1}, note());
  desktop_.runUntil(2);
  dispatch_.lateness().setAtRandom(Seconds{0.5}, 1);
  for (int i = 0; i < 100; ++i) {
    dispatch_.mainQueue()->postAfter(Seconds{1}, note());
  }
  desktop_.runUntil(5);
  ASSERT_EQ(times_.size(), 101U);
  EXPECT_EQ(times_.front(), 1.25);
  EXPECT_GE(times_[1], 3.0);
  EXPECT_GT(times_.back(), times_[1]);
  EXPECT_LE(times_.back(), 3.5);
}

TEST_F(SimulatedDispatchTest, WallTimePassesWithMonotonicTimeAndMovesWithoutIt) {
  desktop_.setWallTime(WallTime(Seconds(1000)));
  desktop_.runFor(5);
  EXPECT_EQ(desktop_.wallTime().time_since_epoch().count(), 1005);
  desktop_.sleepAndWake(600);
  EXPECT_EQ(desktop_.wallTime().time_since_epoch().count(), 1605);
  EXPECT_EQ(desktop_.now(), 5);
}

}  // namespace
}  // namespace zephlin
