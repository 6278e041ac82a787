#include <gtest/gtest.h>

#include <QCoreApplication>
#include <chrono>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Linux/LinuxDispatch.h"
#include "Platform/Linux/LinuxProcessInfo.h"
#include "Platform/Linux/LoopTimer.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;

TEST(CoalescedFireTime, WithoutToleranceIsTheTimeItself) {
  EXPECT_EQ(coalescedFireTime(301s + 7ns, 0s), 301s + 7ns);
}

TEST(CoalescedFireTime, IsTheNextMultipleOfTheTolerance) {
  EXPECT_EQ(coalescedFireTime(301s, 30s), 330s);
  EXPECT_EQ(coalescedFireTime(330s, 30s), 330s);
  EXPECT_EQ(coalescedFireTime(330s + 1ns, 30s), 360s);
  EXPECT_EQ(coalescedFireTime(0s, 30s), 0s);
}

TEST(CoalescedFireTime, IsNeverEarlyNorTooLate) {
  for (std::chrono::nanoseconds due = 0s; due < 100s; due += 977ms) {
    EXPECT_GE(coalescedFireTime(due, 30s), due);
    EXPECT_LT(coalescedFireTime(due, 30s), due + 30s);
  }
}

TEST(LinuxDispatchEnd, WaitsForAllThatItsQueuesHold) {
  std::vector<int> done;
  {
    LinuxDispatch dispatch;
    const auto queue = dispatch.makeSerialQueue("test", QualityOfService::Utility);
    for (int i = 0; i < 3; ++i) {
      queue->post([&done, i] {
        std::this_thread::sleep_for(20ms);
        done.push_back(i);
      });
    }
  }
  EXPECT_EQ(done, (std::vector<int>{0, 1, 2}));
}

TEST(LinuxDispatchEnd, WaitingForBusyQueuesCanBeGivenUp) {
  LinuxDispatch dispatch;
  const auto queue = dispatch.makeSerialQueue("test", QualityOfService::Utility);
  EXPECT_TRUE(dispatch.waitForSerialQueues(Delay{10}));
  std::promise<void> mayEnd;
  queue->post([end = mayEnd.get_future().share()] { end.wait(); });
  EXPECT_FALSE(dispatch.waitForSerialQueues(Delay{0.05}));
  mayEnd.set_value();
  EXPECT_TRUE(dispatch.waitForSerialQueues(Delay{10}));
}

TEST(SerialQueueThread, BeginsItsFirstWorkWhenTheEventLoopHasHadItsTurn) {
  int count = 1;
  char name[] = "test";
  char* arguments[] = {name, nullptr};
  const QCoreApplication application(count, arguments);
  LinuxDispatch dispatch;
  const auto queue = dispatch.makeSerialQueue("test", QualityOfService::Utility);
  std::vector<std::string> order;
  std::promise<void> ended;
  queue->post([&order, &ended] {
    order.emplace_back("work");
    ended.set_value();
  });
  std::this_thread::sleep_for(50ms);
  order.emplace_back("launch");
  QCoreApplication::processEvents();
  ended.get_future().wait();
  EXPECT_EQ(order.front(), "launch");
}

TEST(SerialQueueThread, CarriesTheEndOfTheLabel) {
  std::string name(16, '\0');
  {
    LinuxDispatch dispatch;
    dispatch.makeSerialQueue("com.quorvenel.zephlin.engine", QualityOfService::Utility)
        ->post([&name] { ::pthread_getname_np(::pthread_self(), name.data(), name.size()); });
  }
  EXPECT_STREQ(name.c_str(), ".zephlin.engine");
}

TEST(LinuxProcessInfoTest, TheBundleIsTheFolderOfTheProgram) {
  EXPECT_EQ(LinuxProcessInfo().mainBundlePath(),
            std::filesystem::canonical("/proc/self/exe").parent_path());
}

TEST(LinuxProcessInfoTest, TellsVariablesThatAreSetFromOthers) {
  ::setenv("ZEPHLIN_TEST", "", 1);
  EXPECT_EQ(LinuxProcessInfo().environmentVariable("ZEPHLIN_TEST"), "");
  ::unsetenv("ZEPHLIN_TEST");
  EXPECT_EQ(LinuxProcessInfo().environmentVariable("ZEPHLIN_TEST"), std::nullopt);
}

}  // namespace
}  // namespace zephlin
