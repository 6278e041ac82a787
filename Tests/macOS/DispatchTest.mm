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

TEST_F(DispatchTest, DelayedWorkRunsWhenItsTimeHasComeAndNotBefore) {
  int runs = 0;
  mainQueue()->postAfter(Seconds{1.5}, [&] { ++runs; });
  EXPECT_EQ(standins::calls({"dispatch_after"}), Calls{"dispatch_after(1.500 s, main)"});
  standins::advance(1.499);
  EXPECT_EQ(runs, 0);
  standins::advance(0.001);
  EXPECT_EQ(runs, 1);
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

}  // namespace
}  // namespace zephlin::test
