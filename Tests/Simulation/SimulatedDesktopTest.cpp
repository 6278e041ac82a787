#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <system_error>
#include <utility>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "ZephlinCore/CapsLockEngine.h"

namespace zephlin {
namespace {

using Status = CapsLockEngine::Status;
const CapsLockEngine engine{"/usr/bin/hidutil"};

class SimulatedDesktopTest : public testing::Test {
 protected:
  SimulatedDesktop desktop_;
  SimulatedHidutil& hidutil_ = desktop_.hidutil();
};

TEST_F(SimulatedDesktopTest, TheEngineSetsAndReadsItsKeyboards) {
  desktop_.plugKeyboard(true);
  EXPECT_EQ(engine.status(), (Status{0, 2, 0}));
  engine.applyInstant();
  EXPECT_EQ(engine.status(), (Status{1, 1, 0}));
  engine.restoreDefault();
  EXPECT_EQ(desktop_.keyboards().value(1), -1);
  EXPECT_EQ(desktop_.keyboards().value(2), std::nullopt);
  EXPECT_EQ(hidutil_.callsOnMainThread(), 4U);
  EXPECT_EQ(hidutil_.unknownCalls(), 0U);
  EXPECT_DOUBLE_EQ(desktop_.now(), 0.08);
}

TEST_F(SimulatedDesktopTest, ASetTakesEffectAtItsEnd) {
  const auto queue = desktop_.dispatch().makeSerialQueue("q");
  queue->post([] { engine.applyInstant(); });
  desktop_.runUntil(0.0199);
  EXPECT_EQ(desktop_.keyboards().value(1), std::nullopt);
  EXPECT_EQ(hidutil_.runningCalls(), 1U);
  desktop_.runUntil(0.02);
  EXPECT_EQ(desktop_.keyboards().value(1), 0);
  ASSERT_EQ(hidutil_.calls().size(), 1U);
  EXPECT_EQ(hidutil_.calls()[0].end, 0.02);
  EXPECT_FALSE(hidutil_.calls()[0].onMainThread);
}

TEST_F(SimulatedDesktopTest, OverlappingCallsAreCounted) {
  const auto one = desktop_.dispatch().makeSerialQueue("1");
  const auto other = desktop_.dispatch().makeSerialQueue("2");
  one->post([] { engine.applyInstant(); });
  other->post([] { engine.applyInstant(); });
  desktop_.runFor(1);
  EXPECT_EQ(hidutil_.overlappingCalls(), 1U);
}

TEST_F(SimulatedDesktopTest, FaultsLastAsLongAsTold) {
  hidutil_.failSets(HidutilFault::Exit{3, "no"}, 1);
  EXPECT_THROW(engine.applyInstant(), CapsLockEngine::EngineError);
  EXPECT_EQ(desktop_.keyboards().value(1), std::nullopt);
  EXPECT_NO_THROW(engine.applyInstant());
  hidutil_.failGets(HidutilFault::Exit{3, "no"});
  EXPECT_THROW(static_cast<void>(engine.status()), CapsLockEngine::EngineError);
  EXPECT_THROW(static_cast<void>(engine.status()), CapsLockEngine::EngineError);
  hidutil_.clearFaults();
  EXPECT_NO_THROW(static_cast<void>(engine.status()));
}

TEST_F(SimulatedDesktopTest, AHangingToolIsKilledAtTheLimit) {
  hidutil_.failSets(HidutilFault::Hang{}, 1);
  EXPECT_THROW(engine.applyInstant(), CapsLockEngine::EngineError);
  EXPECT_DOUBLE_EQ(desktop_.now(), 10.0);
  EXPECT_EQ(desktop_.keyboards().value(1), std::nullopt);
}

TEST_F(SimulatedDesktopTest, AToolThatCannotBeLaunchedIsASystemError) {
  hidutil_.failSets(HidutilFault::LaunchFailure{});
  EXPECT_THROW(engine.applyInstant(), std::system_error);
}

TEST_F(SimulatedDesktopTest, GarbageHasNoRows) {
  hidutil_.failGets(HidutilFault::Output{outputThatIsNotUtf8()}, 1);
  EXPECT_EQ(engine.status(), Status{});
  hidutil_.failGets(HidutilFault::Output{outputOfNonsenseRows()}, 1);
  EXPECT_EQ(engine.status().instantServices, 0);
}

TEST_F(SimulatedDesktopTest, ADesktopThatGoesAwayEndsWhatRuns) {
  auto desktop = std::make_unique<SimulatedDesktop>();
  const auto queue = desktop->dispatch().makeSerialQueue("q");
  bool failed = false;
  queue->post([&failed] {
    try {
      engine.applyInstant();
    } catch (const std::system_error&) {
      failed = true;
    }
  });
  desktop->runUntilIdleNow();
  desktop.reset();
  EXPECT_TRUE(failed);
  EXPECT_EQ(SimulatedDesktop::current(), &desktop_);
}

TEST_F(SimulatedDesktopTest, WhatWorkMayKeepOutlivesTheDesktop) {
  auto desktop = std::make_unique<SimulatedDesktop>();
  const auto mainQueue = desktop->dispatch().mainQueue();
  const auto log = desktop->systemLog();
  desktop.reset();
  bool ran = false;
  mainQueue->post([&ran] { ran = true; });
  mainQueue->postAfter(Seconds{1}, [&ran] { ran = true; });
  log->log("late");
  desktop_.runFor(2);
  EXPECT_FALSE(ran);
}

TEST_F(SimulatedDesktopTest, AnAlertIsModalUntilItIsDismissedAndTimeGoesOnMeanwhile) {
  int ticks = 0;
  const auto timer =
      desktop_.dispatch().scheduleTimer(Seconds{1}, Seconds{0}, [&ticks] { ++ticks; });
  desktop_.dismissAlertAfter(3.5);
  desktop_.alerts().runModal({"text", "", {"OK"}});
  EXPECT_EQ(ticks, 3);
  EXPECT_EQ(desktop_.now(), 3.5);
  EXPECT_FALSE(desktop_.alerts().isModal());
}

TEST_F(SimulatedDesktopTest, AnAlertThatNobodyDismissesFails) {
  EXPECT_THROW(desktop_.alerts().runModal({}), std::logic_error);
}

TEST_F(SimulatedDesktopTest, AClickClosesTheMenuAndPerformsTheAction) {
  auto menu = std::make_shared<Menu>();
  bool wasOpen = true;
  menu->add(std::make_shared<MenuItem>("Do it",
                                       [&] { wasOpen = desktop_.systemStatusBar().isMenuOpen(); }));
  menu->add(std::make_shared<MenuItem>("Not this", std::monostate()))->isEnabled = false;
  auto item = desktop_.systemStatusBar().makeStatusItem();
  item->setMenu(menu);
  EXPECT_FALSE(desktop_.click("Do it"));
  ASSERT_TRUE(desktop_.openMenu());
  EXPECT_FALSE(desktop_.click("Not this"));
  EXPECT_TRUE(desktop_.click("Do it"));
  EXPECT_FALSE(wasOpen);
}

}  // namespace
}  // namespace zephlin
