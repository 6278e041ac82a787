#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/Simulated/VirtualLoop.h"

namespace zephlin {
namespace {

using Lane = VirtualLoop::Lane;

class VirtualLoopTest : public testing::Test {
 protected:
  /// Notes its name and the time when it runs.
  std::function<void()> note(const std::string& name) {
    return [this, name] { notes_.push_back(name + "@" + std::to_string(loop_.now())); };
  }
  void noteAt(VirtualTicks time, const std::string& name) {
    loop_.schedule(time, Lane::Main, note(name));
  }
  /// Runs work in the background at that time.
  void backgroundAt(VirtualTicks time, std::function<void()> work) {
    loop_.schedule(time, Lane::Background, [this, work = std::move(work)] {
      loop_.runInBackground(work, [this] { note("done")(); });
    });
  }
  using Notes = std::vector<std::string>;

  Notes notes_;
  VirtualLoop loop_;
};

TEST_F(VirtualLoopTest, RunsEventsByDeadlineAndEqualOnesInTheOrderOfScheduling) {
  noteAt(20, "c");
  noteAt(10, "a");
  noteAt(20, "d");
  noteAt(10, "b");
  loop_.runUntil(20);
  EXPECT_EQ(notes_, (Notes{"a@10", "b@10", "c@20", "d@20"}));
}

TEST_F(VirtualLoopTest, RunsWhatIsDueAtTheEndAndNothingBeyond) {
  noteAt(10, "at");
  noteAt(11, "beyond");
  loop_.runUntil(9);
  EXPECT_EQ(notes_, Notes{});
  loop_.runUntil(10);
  EXPECT_EQ(notes_, Notes{"at@10"});
  EXPECT_EQ(loop_.now(), 10);
  EXPECT_EQ(loop_.nextDeadline(), 11);
}

TEST_F(VirtualLoopTest, APastDeadlineIsNowBehindWhatIsDue) {
  loop_.runUntil(50);
  noteAt(50, "first");
  noteAt(10, "second");
  loop_.runUntilIdleNow();
  EXPECT_EQ(notes_, (Notes{"first@50", "second@50"}));
}

TEST_F(VirtualLoopTest, IdleNowIncludesWhatBecomesDueMeanwhile) {
  loop_.schedule(0, Lane::Main, [this] { noteAt(0, "nested"); });
  noteAt(1, "later");
  loop_.runUntilIdleNow();
  EXPECT_EQ(notes_, Notes{"nested@0"});
}

TEST_F(VirtualLoopTest, StepRunsOneEventWheneverItIsDue) {
  noteAt(7, "a");
  noteAt(9, "b");
  EXPECT_TRUE(loop_.step());
  EXPECT_EQ(notes_, Notes{"a@7"});
  EXPECT_TRUE(loop_.step());
  EXPECT_FALSE(loop_.step());
  EXPECT_EQ(loop_.now(), 9);
}

TEST_F(VirtualLoopTest, ACancelledEventNeverRuns) {
  const auto event = loop_.schedule(5, Lane::Main, note("never"));
  EXPECT_TRUE(loop_.cancel(event));
  EXPECT_FALSE(loop_.cancel(event));
  loop_.runUntil(10);
  EXPECT_EQ(notes_, Notes{});
}

TEST_F(VirtualLoopTest, AnEventMayPumpTheLoopBeyondTheOuterEnd) {
  loop_.schedule(5, Lane::Main, [this] {
    note("begin")();
    loop_.runUntil(30);
    note("end")();
  });
  noteAt(20, "inner");
  noteAt(40, "outer");
  loop_.runUntil(10);
  EXPECT_EQ(notes_, (Notes{"begin@5", "inner@20", "end@30"}));
  EXPECT_EQ(loop_.now(), 30);
}

TEST_F(VirtualLoopTest, BlockedBackgroundWorkLetsTheMainThreadGoOn) {
  std::vector<bool> onMain;
  backgroundAt(10, [&] {
    onMain.push_back(loop_.isOnMainThread());
    note("blocks")();
    loop_.blockFor(20);
    onMain.push_back(loop_.isOnMainThread());
    note("goes on")();
  });
  loop_.schedule(20, Lane::Main, [&] {
    onMain.push_back(loop_.isOnMainThread());
    note("main")();
  });
  loop_.runUntil(100);
  EXPECT_EQ(notes_, (Notes{"blocks@10", "main@20", "goes on@30", "done@30"}));
  EXPECT_EQ(onMain, (std::vector<bool>{false, true, false}));
}

TEST_F(VirtualLoopTest, WhatIsDueWhenABlockEndsAndWasThereBeforeRunsFirst) {
  noteAt(30, "main");
  backgroundAt(10, [this] {
    loop_.blockFor(20);
    note("goes on")();
  });
  loop_.runUntil(100);
  EXPECT_EQ(notes_, (Notes{"main@30", "goes on@30", "done@30"}));
}

TEST_F(VirtualLoopTest, ABlockIsNotOverBeforeTheLoopWasPumpedSoFar) {
  backgroundAt(10, [this] {
    loop_.blockFor(20);
    note("goes on")();
  });
  loop_.runUntil(29);
  EXPECT_EQ(notes_, Notes{});
  EXPECT_EQ(loop_.now(), 29);
  loop_.runUntil(30);
  EXPECT_EQ(notes_, (Notes{"goes on@30", "done@30"}));
}

TEST_F(VirtualLoopTest, TwoBackgroundWorksBlockSideBySide) {
  backgroundAt(0, [this] {
    loop_.blockFor(10);
    note("short")();
  });
  backgroundAt(1, [this] {
    loop_.blockFor(100);
    note("long")();
  });
  loop_.runUntil(200);
  EXPECT_EQ(notes_, (Notes{"short@10", "done@10", "long@101", "done@101"}));
}

TEST_F(VirtualLoopTest, BackgroundWorkGoesOnWhileTheMainThreadPumpsWithinAnEvent) {
  backgroundAt(0, [this] {
    loop_.blockFor(20);
    note("background")();
  });
  loop_.schedule(10, Lane::Main, [this] {
    loop_.runUntil(50);
    note("main")();
  });
  loop_.runUntil(15);
  EXPECT_EQ(notes_, (Notes{"background@20", "done@20", "main@50"}));
}

TEST_F(VirtualLoopTest, ABlockedMainThreadDelaysItsEventsAndNoOthers) {
  loop_.schedule(10, Lane::Main, [this] {
    loop_.blockFor(20);
    note("unblocked")();
  });
  noteAt(15, "delayed");
  backgroundAt(16, [this] { note("background")(); });
  loop_.runUntil(100);
  EXPECT_EQ(notes_, (Notes{"background@16", "done@16", "unblocked@30", "delayed@30"}));
}

TEST_F(VirtualLoopTest, TellsTurnObserversAfterEachEventAndEachPumping) {
  int turns = 0;
  loop_.addTurnObserver([&turns] { ++turns; });
  noteAt(1, "a");
  noteAt(2, "b");
  loop_.runUntil(5);
  EXPECT_EQ(turns, 3);
}

TEST_F(VirtualLoopTest, WhatBackgroundWorkThrowsReachesThePump) {
  backgroundAt(1, [] { throw std::runtime_error("from the background"); });
  EXPECT_THROW(loop_.runUntil(5), std::runtime_error);
  EXPECT_TRUE(loop_.isOnMainThread());
}

TEST_F(VirtualLoopTest, ShuttingDownEndsBlocksAndDropsEvents) {
  backgroundAt(0, [this] {
    loop_.blockFor(1000);
    note("let go")();
  });
  noteAt(500, "never");
  loop_.runUntil(10);
  loop_.shutDown();
  EXPECT_EQ(notes_, Notes{"let go@10"});
  EXPECT_EQ(loop_.pendingEvents(), 0U);
}

}  // namespace
}  // namespace zephlin
