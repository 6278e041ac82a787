#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>

#include "KeyboardService/Service/Clients/Turns.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

constexpr Turns::Party alice = 1000;
constexpr Turns::Party bob = 1001;
constexpr Turns::Party newcomers = std::nullopt;

/// Writes down who takes turns. The test says for how long the thread works in each.
class TurnsTest : public testing::Test {
 protected:
  /// Requests `turns` turns for somebody, each one after the first within the one before.
  void request(const std::string& name, Turns::Party party, int turns = 1) {
    left_[name] = turns;
    const auto take = [this, name] {
      taken += name + ' ';
      worked_ += workOfATurn;
      if (--left_[name] > 0) {
        turns_.at(name).request();
      } else {
        turns_.erase(name);
      }
    };
    turns_.try_emplace(name, queue_, party, take).first->second.request();
  }

  void cancel(const std::string& name) { turns_.erase(name); }

  void run() {
    while (!turns_.empty()) {
      sd_event_run(loop_.native(), UINT64_MAX);
    }
  }

  Turns::Time workOfATurn{};
  std::string taken;

 private:
  EventLoop loop_;
  Turns::Time worked_ = 5s;
  Turns queue_{loop_, [this] { return worked_; }};
  std::map<std::string, int> left_;
  std::map<std::string, Turn> turns_;
};

TEST_F(TurnsTest, UsersTakeTurnsHoweverManyConnectionsTheyHave) {
  for (const char* const name : {"a1", "a2", "a3", "a4"}) {
    request(name, alice, 2);
  }
  request("b", bob, 3);
  request("new", newcomers, 2);
  run();
  EXPECT_EQ(taken, "a1 b new a2 b new a3 b a4 a1 a2 a3 a4 ");
}

TEST_F(TurnsTest, OneThatWantsNoTurnHoldsUpNobody) {
  request("a", alice);
  request("b1", bob);
  request("b2", bob);
  cancel("a");
  cancel("b1");
  run();
  EXPECT_EQ(taken, "b2 ");
}

TEST_F(TurnsTest, TheLastOneMayGoWhileItWaits) {
  request("a", alice);
  cancel("a");
  request("b", bob);
  run();
  EXPECT_EQ(taken, "b ");
}

TEST_F(TurnsTest, TheThreadRestsAsLongAsItHasWorked) {
  workOfATurn = 20ms;
  request("a", alice, 3);
  request("b", bob, 3);
  const auto start = steady_clock::now();
  run();
  // Nothing but time that has passed counts as rest: the work is made up, so all of it is.
  EXPECT_GE(steady_clock::now() - start, 4 * 2 * 20ms);
}

TEST_F(TurnsTest, TimeWithoutWorkIsNotSavedUp) {
  workOfATurn = 20ms;
  request("a", alice, 2);
  run();
  std::this_thread::sleep_for(100ms);
  const auto start = steady_clock::now();
  request("a", alice, 3);
  run();
  EXPECT_GE(steady_clock::now() - start, 2 * 20ms);
}

}  // namespace
}  // namespace zephlin
