#include <chrono>
#include <thread>

#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

using MainQueueTest = ContractTest;

TEST_F(MainQueueTest, WhatIsPostedRunsInOrderAndNotAtOnce) {
  Words order;
  mainQueue()->post([&] { order.emplace_back("first"); });
  mainQueue()->post([&] { order.emplace_back("second"); });
  EXPECT_TRUE(order.empty());
  EXPECT_TRUE(runUntil([&] { return order.size() == 2; }));
  EXPECT_EQ(order, (Words{"first", "second"}));
}

TEST_F(MainQueueTest, WhatWorkPostsRunsAfterAllThatWasPostedBefore) {
  Words order;
  mainQueue()->post([&] {
    mainQueue()->post([&] { order.emplace_back("posted by the first"); });
    order.emplace_back("first");
  });
  mainQueue()->post([&] { order.emplace_back("second"); });
  EXPECT_TRUE(runUntil([&] { return order.size() == 3; }));
  EXPECT_EQ(order, (Words{"first", "second", "posted by the first"}));
}

TEST_F(MainQueueTest, WhatAnotherThreadPostsRunsOnTheMainThreadInItsOrder) {
  constexpr int posts = 100;
  const auto mainThread = std::this_thread::get_id();
  std::vector<int> order;
  bool onMainThread = true;
  const auto queue = dispatch().makeSerialQueue("contract");
  queue->post([&] {
    for (int number = 0; number < posts; ++number) {
      mainQueue()->post([&, number] {
        onMainThread = onMainThread && std::this_thread::get_id() == mainThread;
        order.push_back(number);
      });
    }
  });
  EXPECT_TRUE(runUntil([&] { return order.size() == posts; }));
  EXPECT_TRUE(onMainThread);
  for (int number = 0; number < posts; ++number) {
    EXPECT_EQ(order[static_cast<std::size_t>(number)], number);
  }
}

TEST_F(MainQueueTest, DelayedWorkIsNeverEarly) {
  for (const double delay : {0.0, 0.001, 0.0333, 0.05}) {
    const double start = desktop().monotonicSeconds();
    double ran = -1;
    mainQueue()->postAfter(Seconds{delay}, [&] { ran = desktop().monotonicSeconds(); });
    EXPECT_EQ(ran, -1) << "ran at once";
    EXPECT_TRUE(runUntil([&] { return ran >= 0; }));
    EXPECT_GE(ran - start, delay - 1e-6);
  }
}

/// Posts two pieces of delayed work, the later one first, and works both off after a pause.
class DelayedWorkTest : public MainQueueTest {
 protected:
  Words orderAfterPause(std::chrono::milliseconds pause) {
    // A busy machine may hold us up between the two for as long as their deadlines are apart.
    for (;;) {
      Words order;
      const double start = desktop().monotonicSeconds();
      mainQueue()->postAfter(Seconds{0.06}, [&] { order.emplace_back("late"); });
      mainQueue()->postAfter(Seconds{0.02}, [&] { order.emplace_back("early"); });
      const bool isOrderCertain = desktop().monotonicSeconds() - start < 0.04;
      std::this_thread::sleep_for(pause);
      EXPECT_TRUE(runUntil([&] { return order.size() == 2; }));
      if (isOrderCertain) {
        return order;
      }
    }
  }
};

TEST_F(DelayedWorkTest, RunsByItsDeadlineAndNotByItsPlace) {
  EXPECT_EQ(orderAfterPause(std::chrono::milliseconds(0)), (Words{"early", "late"}));
}

TEST_F(DelayedWorkTest, RunsByItsDeadlineAlsoWhereAllOfItIsOverdue) {
  EXPECT_EQ(orderAfterPause(std::chrono::milliseconds(100)), (Words{"early", "late"}));
}

TEST_F(MainQueueTest, ACancelledWorkItemDoesNotRunAndTakesNoOtherWithIt) {
  Words order;
  auto cancelled = std::make_shared<WorkItem>([&] { order.emplace_back("cancelled"); });
  auto kept = std::make_shared<WorkItem>([&] { order.emplace_back("kept"); });
  mainQueue()->postAfter(Seconds{0.01}, [cancelled] { cancelled->perform(); });
  mainQueue()->postAfter(Seconds{0.01}, [kept] { kept->perform(); });
  mainQueue()->postAfter(Seconds{0.03}, [&] { order.emplace_back("end"); });
  cancelled->cancel();
  EXPECT_TRUE(runUntil([&] { return !order.empty() && order.back() == "end"; }));
  EXPECT_EQ(order, (Words{"kept", "end"}));
}

TEST_F(MainQueueTest, WallTimeGoesOnWithMonotonicTime) {
  const double wall = platform().clock().now().time_since_epoch().count();
  const double start = desktop().monotonicSeconds();
  desktop().runFor(0.1);
  const double passed = desktop().monotonicSeconds() - start;
  EXPECT_GT(wall, 1.5e9) << "seconds since 1970";
  EXPECT_GE(platform().clock().now().time_since_epoch().count() - wall, passed / 2);
}

}  // namespace
}  // namespace zephlin::contract
