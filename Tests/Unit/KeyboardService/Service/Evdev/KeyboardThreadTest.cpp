#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <array>
#include <csignal>
#include <optional>

#include "KeyboardService/Service/Evdev/KeyboardThread.h"
#include "Tests/Unit/KeyboardService/Support/FakeKeyboardHandling.h"

namespace zephlin {
namespace {

using Kind = KeyboardState::Kind;
using Texts = std::vector<std::string>;

class KeyboardThreadTest : public testing::Test {
 protected:
  void start(const std::string& name = "event3") {
    thread.emplace(
        loop, name, makeFake(probe),
        KeyboardThread::Callbacks{
            [this](const KeyboardState& state) { told.push_back(state.text); },
            [this] { told.emplace_back("checked"); }, [this] { told.emplace_back("chord"); },
            [this](const std::string& reason) { told.push_back("failed: " + reason); }});
  }

  /// Runs an action on the keyboard's thread, which has been made.
  void onThread(const std::function<void()>& action) {
    std::promise<void> done;
    probe->loop->post([&] {
      action();
      done.set_value();
    });
    done.get_future().wait();
  }

  void turnUntilTold(const std::string& what) {
    turnUntil(loop, [&] { return !told.empty() && told.back() == what; });
  }

  EventLoop loop;
  std::shared_ptr<HandlingProbe> probe = std::make_shared<HandlingProbe>();
  Texts told;
  std::optional<KeyboardThread> thread;
};

TEST_F(KeyboardThreadTest, PassesOnWhatIsAskedAndWhatIsReportedInItsOrder) {
  start();
  thread->setRule({std::chrono::milliseconds(100), {}});
  thread->check();
  turnUntilTold("checked");
  EXPECT_EQ(probe->events(), (Texts{"made", "hold 100", "checked"}));
  EXPECT_EQ(told, (Texts{"fake", "checked"}));
  onThread([this] {
    probe->report({Kind::NotInForce, "lost"});
    probe->emergencyChord();
  });
  turnUntilTold("chord");
  EXPECT_EQ(told, (Texts{"fake", "checked", "lost", "chord"}));
}

TEST_F(KeyboardThreadTest, HasTheNameOfItsKeyboardAndGetsNoSignal) {
  start("a name that is too long");
  turnUntilTold("fake");
  std::array<char, 16> name{};
  sigset_t blocked;
  onThread([&] {
    ::pthread_getname_np(::pthread_self(), name.data(), name.size());
    ::pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  });
  EXPECT_STREQ(name.data(), "a name that is ");
  EXPECT_TRUE(sigismember(&blocked, SIGTERM) == 1 && sigismember(&blocked, SIGINT) == 1);
  sigset_t own;
  ::pthread_sigmask(SIG_SETMASK, nullptr, &own);
  EXPECT_EQ(sigismember(&own, SIGTERM), 0);
}

TEST_F(KeyboardThreadTest, RunsInRealTimeIfThatIsAllowedAndTheMainThreadDoesNot) {
  start();
  turnUntilTold("fake");
  int policy = -1;
  bool isAllowed = false;
  onThread([&] {
    policy = ::sched_getscheduler(0);
    sched_param parameters{};
    parameters.sched_priority = 1;
    isAllowed = ::sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameters) == 0;
  });
  EXPECT_EQ(policy, isAllowed ? SCHED_RR | SCHED_RESET_ON_FORK : SCHED_OTHER);
  EXPECT_EQ(::sched_getscheduler(0), SCHED_OTHER);
}

TEST_F(KeyboardThreadTest, ReportsItsEndWithoutBlockingAndNothingElseAfterwards) {
  std::promise<void> mayEnd;
  probe->mayEnd = mayEnd.get_future().share();
  start();
  turnUntilTold("fake");
  thread->end([this] {
    told.emplace_back("ended");
    thread.reset();
  });
  thread->check();
  EXPECT_NE(probe->events().back(), "ended");
  mayEnd.set_value();
  turnUntilTold("ended");
  EXPECT_EQ(told, (Texts{"fake", "ended"}));
  EXPECT_EQ(probe->events().back(), "ended");
  EXPECT_FALSE(thread);
}

TEST_F(KeyboardThreadTest, NothingIsToldOnceItIsDestroyed) {
  start();
  thread->check();
  thread.reset();
  EXPECT_EQ(probe->events().back(), "ended");
  loop.post([this] { loop.stop(); });
  loop.run();
  EXPECT_EQ(told, Texts{});
}

TEST_F(KeyboardThreadTest, AHandlingThatCannotBeMadeIsAFailure) {
  probe->failsToStart = true;
  start();
  turnUntilTold("failed: no luck");
  thread->check();
  thread.reset();
}

TEST_F(KeyboardThreadTest, AnExceptionIsAFailureAndLeavesTheKeyboardToTheSystem) {
  start();
  turnUntilTold("fake");
  probe->loop->post([] { throw std::runtime_error("oops"); });
  turnUntilTold("failed: oops");
  EXPECT_EQ(probe->events(), (Texts{"made", "ended"}));
}

}  // namespace
}  // namespace zephlin
