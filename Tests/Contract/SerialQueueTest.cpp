#include <atomic>
#include <mutex>
#include <thread>

#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

class SerialQueueTest : public ContractTest {
 protected:
  std::unique_ptr<SerialQueue> queue_ =
      dispatch().makeSerialQueue("com.quorvenel.zephlin.contract");
};

TEST_F(SerialQueueTest, WorkRunsOffTheMainThread) {
  std::thread::id thread;
  bool done = false;
  queue_->post([&] {
    thread = std::this_thread::get_id();
    mainQueue()->post([&done] { done = true; });
  });
  EXPECT_TRUE(runUntil([&] { return done; }));
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(SerialQueueTest, WorkRunsOneAtATimeInItsOrder) {
  constexpr int works = 20;
  std::vector<int> order;
  std::atomic<int> running = 0;
  std::atomic<bool> overlapped = false;
  bool done = false;
  for (int number = 0; number < works; ++number) {
    queue_->post([&, number] {
      overlapped = overlapped || ++running > 1;
      desktop().letTimePass(0.002);
      order.push_back(number);
      --running;
    });
  }
  queue_->post([&] { mainQueue()->post([&done] { done = true; }); });
  EXPECT_TRUE(runUntil([&] { return done; }));
  EXPECT_FALSE(overlapped);
  ASSERT_EQ(order.size(), static_cast<std::size_t>(works));
  for (int number = 0; number < works; ++number) {
    EXPECT_EQ(order[static_cast<std::size_t>(number)], number);
  }
}

TEST_F(SerialQueueTest, WorkMayPostMoreToItsQueue) {
  bool done = false;
  queue_->post([&] { queue_->post([&] { mainQueue()->post([&done] { done = true; }); }); });
  EXPECT_TRUE(runUntil([&] { return done; }));
}

TEST_F(SerialQueueTest, TheMainThreadGoesOnMeanwhile) {
  Words order;
  queue_->post([&] {
    desktop().letTimePass(0.1);
    mainQueue()->post([&] { order.emplace_back("slow"); });
  });
  mainQueue()->post([&] { order.emplace_back("main"); });
  EXPECT_TRUE(runUntil([&] { return order.size() == 2; }));
  EXPECT_EQ(order, (Words{"main", "slow"}));
}

TEST_F(SerialQueueTest, WhatWasPostedStillRunsAfterTheQueueWasDestroyed) {
  Words order;
  queue_->post([&] {
    desktop().letTimePass(0.05);
    mainQueue()->post([&] { order.emplace_back("first"); });
  });
  queue_->post([&] { mainQueue()->post([&] { order.emplace_back("second"); }); });
  queue_.reset();
  order.emplace_back("destroyed");
  EXPECT_TRUE(runUntil([&] { return order.size() == 3; }));
  EXPECT_EQ(order, (Words{"destroyed", "first", "second"}));
}

TEST_F(SerialQueueTest, TwoQueuesDoNotWaitForEachOther) {
  const auto other = dispatch().makeSerialQueue("other");
  Words order;
  queue_->post([&] {
    desktop().letTimePass(0.2);
    mainQueue()->post([&] { order.emplace_back("slow"); });
  });
  other->post([&] { mainQueue()->post([&] { order.emplace_back("other"); }); });
  EXPECT_TRUE(runUntil([&] { return order.size() == 2; }));
  EXPECT_EQ(order, (Words{"other", "slow"}));
}

}  // namespace
}  // namespace zephlin::contract
