#include <algorithm>
#include <atomic>
#include <thread>

#include "StandIns/Actions.h"
#include "StandIns/CallLog.h"
#import "Support/MacTest.h"

namespace zephlin::test {
namespace {

class DispatchTest : public MacTest {
 protected:
  std::shared_ptr<MainQueue> mainQueue() { return platform().dispatch().mainQueue(); }
};

TEST_F(DispatchTest, ASerialQueueHasTheLabelAndTheUtilityClassAndNoTarget) {
  const auto queue = platform().dispatch().makeSerialQueue("label");
  EXPECT_EQ(
      standins::calls({"dispatch_queue"}),
      Calls{"dispatch_queue_create_with_target(label, qos 0x11 0, frequency 0, target default)"});
}

TEST_F(DispatchTest, ASerialQueueWorksInOrderOffTheMainThreadAndIsReleasedAfterItsWork) {
  std::vector<int> order;
  std::atomic<bool> offMainThread = true;
  const auto mainThread = std::this_thread::get_id();
  auto queue = platform().dispatch().makeSerialQueue("label");
  for (int i = 0; i < 100; ++i) {
    queue->post([&, i] {
      offMainThread = offMainThread && std::this_thread::get_id() != mainThread;
      order.push_back(i);
    });
  }
  queue.reset();
  standins::settle();
  EXPECT_TRUE(offMainThread);
  EXPECT_EQ(order.size(), 100U);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
  EXPECT_FALSE(standins::liveObjects().contains("dispatch_queue"));
}

TEST_F(DispatchTest, TheMainQueueWorksOnTheMainThreadInOrderWhoeverPosts) {
  std::vector<int> order;
  const auto mainThread = std::this_thread::get_id();
  bool onMainThread = false;
  mainQueue()->post([&] { order.push_back(1); });
  std::thread([&] {
    mainQueue()->post([&] {
      onMainThread = std::this_thread::get_id() == mainThread;
      order.push_back(2);
    });
  }).join();
  EXPECT_TRUE(order.empty());
  waitUntil([&] { return order.size() == 2; });
  EXPECT_EQ(order, (std::vector{1, 2}));
  EXPECT_TRUE(onMainThread);
}

TEST_F(DispatchTest, DelayedWorkRunsWhenItsTimeHasComeAndNotBefore) {
  int runs = 0;
  mainQueue()->postAfter(Seconds{1.5}, [&] { ++runs; });
  EXPECT_EQ(standins::calls({"dispatch_after"}), Calls{"dispatch_after(1.500 s, main)"});
  standins::advance(1.499);
  EXPECT_EQ(runs, 0);
  standins::advance(0.001);
  EXPECT_EQ(runs, 1);
}

TEST_F(DispatchTest, DelayedWorkRunsByItselfWhenTimeRuns) {
  standins::resumeTime();
  bool hasRun = false;
  mainQueue()->postAfter(Seconds{0.01}, [&] { hasRun = true; });
  waitUntil([&] { return hasRun; });
  standins::stopTime();
}

TEST_F(DispatchTest, ATimerHasItsToleranceAndFiresInTheCommonModesUntilItIsDestroyed) {
  int ticks = 0;
  auto timer = platform().dispatch().scheduleTimer(Seconds{300}, Seconds{30}, [&] { ++ticks; });
  EXPECT_EQ(standins::calls({"NSRunLoop"}),
            Calls{"NSRunLoop addTimer(interval 300, tolerance 30, main, common modes)"});
  standins::fireTimers(300);
  standins::fireTimers(300);
  EXPECT_EQ(ticks, 2);
  timer.reset();
  EXPECT_EQ(standins::calls({"NSTimer"}), Calls{"NSTimer invalidate(interval 300)"});
  standins::fireTimers(300);
  EXPECT_EQ(ticks, 2);
}

TEST_F(DispatchTest, ATimerTicksByItself) {
  int ticks = 0;
  const auto timer =
      platform().dispatch().scheduleTimer(Seconds{0.01}, Seconds{}, [&] { ++ticks; });
  EXPECT_EQ(ticks, 0);
  waitUntil([&] { return ticks >= 3; });
}

TEST_F(DispatchTest, ATimerMayBeDestroyedByItsOwnTick) {
  int ticks = 0;
  std::unique_ptr<Timer> timer;
  const auto payload = std::make_shared<int>(7);
  timer = platform().dispatch().scheduleTimer(Seconds{0.01}, Seconds{}, [&, payload] {
    timer.reset();
    ticks += *payload;
  });
  waitUntil([&] { return ticks != 0; });
  EXPECT_EQ(ticks, 7);
  EXPECT_EQ(timer, nullptr);
}

}  // namespace
}  // namespace zephlin::test
