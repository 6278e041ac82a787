#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Platform/Linux/LinuxApplication.h"
#include "Platform/Linux/LinuxDispatch.h"

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

class LoopTimerTest : public testing::Test {
 private:
  int count_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  const QCoreApplication application_{count_, arguments_};
};

TEST_F(LoopTimerTest, TheFirstTickIsLateByItsToleranceAtMost) {
  const auto before = std::chrono::steady_clock::now();
  const LoopTimer timer(Seconds{300}, Seconds{30}, [] {});
  const auto remaining = timer.remainingTime();
  EXPECT_GE(remaining, 300s - (std::chrono::steady_clock::now() - before));
  EXPECT_LE(remaining, 330s);
}

TEST_F(LoopTimerTest, SoIsEachTickAfterIt) {
  std::unique_ptr<LoopTimer> timer;
  std::vector<std::chrono::milliseconds> remaining;
  timer = std::make_unique<LoopTimer>(Seconds{0.01}, Seconds{0.02}, [&] {
    remaining.push_back(timer->remainingTime());
    if (remaining.size() == 3) {
      QCoreApplication::quit();
    }
  });
  QCoreApplication::exec();
  for (const auto each : remaining) {
    EXPECT_LE(each, 31ms);  // Rounded up.
  }
}

TEST(LinuxDispatchEnd, WaitsForAllThatItsQueuesHold) {
  std::vector<int> done;
  {
    LinuxDispatch dispatch;
    const auto queue = dispatch.makeSerialQueue("test");
    for (int i = 0; i < 3; ++i) {
      queue->post([&done, i] {
        std::this_thread::sleep_for(20ms);
        done.push_back(i);
      });
    }
  }
  EXPECT_EQ(done, (std::vector<int>{0, 1, 2}));
}

TEST(LinuxDispatchEnd, AbandoningDropsWhatHasNotBegunAndReturnsWhetherAnythingIsRunning) {
  std::vector<std::string> done;
  std::promise<void> begun;
  std::promise<void> mayEnd;
  {
    LinuxDispatch dispatch;
    auto queue = dispatch.makeSerialQueue("test");
    queue->post([&done] { done.emplace_back("dropped while idle"); });
    EXPECT_TRUE(dispatch.abandonSerialQueues());
    queue->post([&] {
      begun.set_value();
      mayEnd.get_future().wait();
      done.emplace_back("under way");
    });
    queue->post([&done] { done.emplace_back("dropped"); });
    queue.reset();  // Begins.
    begun.get_future().wait();
    EXPECT_FALSE(dispatch.abandonSerialQueues());
    mayEnd.set_value();
  }
  EXPECT_EQ(done, std::vector<std::string>{"under way"});
}

pid_t spawnSleep() {
  pid_t child = -1;
  char name[] = "sleep";
  char duration[] = "1000";
  char* const arguments[] = {name, duration, nullptr};
  EXPECT_EQ(::posix_spawn(&child, "/bin/sleep", nullptr, nullptr, arguments, environ), 0);
  return child;
}

TEST(LinuxDispatchEnd, AbandoningEndsTheChildProcessesOfWorkAndNoOthers) {
  const pid_t ownChild = spawnSleep();
  std::promise<void> begun;
  std::promise<int> ended;
  {
    LinuxDispatch dispatch;
    dispatch.makeSerialQueue("test")->post([&] {
      const pid_t child = spawnSleep();
      begun.set_value();
      int status = 0;
      ::waitpid(child, &status, 0);
      ended.set_value(status);
    });
    begun.get_future().wait();
    EXPECT_FALSE(dispatch.abandonSerialQueues());
  }
  const int status = ended.get_future().get();
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
  EXPECT_EQ(::waitpid(ownChild, nullptr, WNOHANG), 0) << "not its business";
  ::kill(ownChild, SIGKILL);
  ::waitpid(ownChild, nullptr, 0);
}

TEST(SerialQueueThread, BeginsItsFirstWorkWhenTheEventLoopHasHadItsTurn) {
  int count = 1;
  char name[] = "test";
  char* arguments[] = {name, nullptr};
  const QCoreApplication application(count, arguments);
  LinuxDispatch dispatch;
  const auto queue = dispatch.makeSerialQueue("test");
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
    dispatch.makeSerialQueue("com.quorvenel.zephlin.engine")->post([&name] {
      ::pthread_getname_np(::pthread_self(), name.data(), name.size());
    });
  }
  EXPECT_STREQ(name.c_str(), ".zephlin.engine");
}

TEST(LinuxProcessInfoTest, TheBundleIsTheFolderOfTheProgram) {
  EXPECT_EQ(LinuxProcessInfo().mainBundlePath(),
            std::filesystem::canonical("/proc/self/exe").parent_path());
}

TEST(LinuxProcessInfoTest, DistinguishesEmptyVariablesFromMissingOnes) {
  ::setenv("ZEPHLIN_TEST", "", 1);
  EXPECT_EQ(LinuxProcessInfo().environmentVariable("ZEPHLIN_TEST"), "");
  ::unsetenv("ZEPHLIN_TEST");
  EXPECT_EQ(LinuxProcessInfo().environmentVariable("ZEPHLIN_TEST"), std::nullopt);
}

}  // namespace
}  // namespace zephlin
