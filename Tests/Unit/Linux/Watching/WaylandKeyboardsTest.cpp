#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "Platform/Linux/Watching/WaylandKeyboards.h"
#include "Tests/Support/QtLoop.h"
#include "Tests/Unit/Linux/Watching/Support/PrivateCompositor.h"

namespace zephlin {
namespace {

using test::PrivateCompositor;
using Reports = std::vector<std::string>;

constexpr auto lock = PrivateCompositor::lock;

class WaylandKeyboardsTest : public testing::Test {
 protected:
  WaylandKeyboardsTest() { deliver(); }

  void report(const WaylandKeyboards::Event& event) {
    if (const auto* key = std::get_if<KeyEvent>(&event)) {
      reports_.emplace_back(key->isDown ? "down" : "up");
      times_.push_back(key->time);
    } else {
      const auto& change = std::get<FlagsEvent>(event);
      const std::string state = change.flags == modifierCapsLock ? "on" : "off";
      reports_.push_back((change.changeTime ? "to " : "is ") + state);
      times_.push_back(change.changeTime.value_or(EventTime()));
    }
  }

  /// At once what was sent.
  void deliver() {
    compositor_.deliver();
    test::runLoopFor(std::chrono::milliseconds(1));
  }

  /// In whole milliseconds from the first report's time.
  [[nodiscard]] std::int64_t laterThanFirst(std::size_t index) const {
    return std::chrono::round<std::chrono::milliseconds>(times_.at(index) - times_.at(0)).count();
  }

  void enterUnlocked() {
    seat_.enter(0);
    deliver();
    ASSERT_EQ(reports_, Reports{"is off"});
    reports_.clear();
    times_.clear();
  }

  PrivateCompositor compositor_;
  PrivateCompositor::Seat& seat_ = compositor_.addSeat();
  Reports reports_;
  std::vector<EventTime> times_;
  std::unique_ptr<WaylandKeyboards> keyboards_ =
      WaylandKeyboards::open(compositor_.display(), [this](const auto& event) { report(event); });
};

TEST_F(WaylandKeyboardsTest, ReportTheKeyAndThenTheLockInTheOrderOfWlrootsMutterAndKWin) {
  enterUnlocked();
  seat_.key(5000, KEY_CAPSLOCK, true);
  seat_.modifiers(lock, lock);
  deliver();
  seat_.key(5080, KEY_CAPSLOCK, false);
  seat_.modifiers(0, lock);
  deliver();
  seat_.key(5300, KEY_CAPSLOCK, true);
  seat_.modifiers(lock, lock);
  deliver();
  seat_.key(5390, KEY_CAPSLOCK, false);
  seat_.modifiers(0, 0);
  deliver();
  EXPECT_EQ(reports_, (Reports{"down", "to on", "up", "down", "up", "to off"}));
  EXPECT_EQ(laterThanFirst(1), 0);
  EXPECT_EQ(laterThanFirst(3), 300);
  EXPECT_EQ(laterThanFirst(5), 390);
}

TEST_F(WaylandKeyboardsTest, ReportTheKeyFirstAlsoIfTheModifiersAreSentBeforeIt) {
  enterUnlocked();
  seat_.modifiers(lock, lock);
  seat_.key(5000, KEY_CAPSLOCK, true);
  deliver();
  seat_.modifiers(0, lock);
  seat_.key(5080, KEY_CAPSLOCK, false);
  deliver();
  seat_.modifiers(lock, lock);
  seat_.key(5300, KEY_CAPSLOCK, true);
  deliver();
  seat_.modifiers(0, 0);
  seat_.key(5390, KEY_CAPSLOCK, false);
  deliver();
  EXPECT_EQ(reports_, (Reports{"down", "to on", "up", "down", "up", "to off"}));
  EXPECT_EQ(laterThanFirst(1), 0);
  EXPECT_EQ(laterThanFirst(3), 300);
  EXPECT_EQ(laterThanFirst(5), 390);
}

TEST_F(WaylandKeyboardsTest, ReportTheLockAfterTheKeyHasReachedEveryObserver) {
  Reports order;
  const auto note = [&order](const WaylandKeyboards::Event& event) {
    const auto* change = std::get_if<FlagsEvent>(&event);
    if (change == nullptr || change->changeTime) {
      order.emplace_back(change == nullptr ? "key" : "lock");
    }
  };
  const auto first = WaylandKeyboards::open(compositor_.display(), note);
  const auto second = WaylandKeyboards::open(compositor_.display(), note);
  deliver();
  seat_.enter(0);
  deliver();
  seat_.modifiers(lock, lock);
  seat_.key(5000, KEY_CAPSLOCK, true);
  deliver();
  EXPECT_EQ(order, (Reports{"key", "key", "lock", "lock"}));
}

TEST_F(WaylandKeyboardsTest, PairTapsThatArriveAllAtOnce) {
  enterUnlocked();
  seat_.key(5000, KEY_CAPSLOCK, true);
  seat_.modifiers(lock, lock);
  seat_.key(5080, KEY_CAPSLOCK, false);
  seat_.modifiers(0, lock);
  seat_.key(5300, KEY_CAPSLOCK, true);
  seat_.modifiers(lock, lock);
  seat_.key(5390, KEY_CAPSLOCK, false);
  seat_.modifiers(0, 0);
  deliver();
  EXPECT_EQ(reports_, (Reports{"down", "to on", "up", "down", "up", "to off"}));
  EXPECT_EQ(laterThanFirst(1), 0);
  EXPECT_EQ(laterThanFirst(5), 390);
}

TEST_F(WaylandKeyboardsTest, TimeALockWithoutAKeyByItsArrival) {
  enterUnlocked();
  seat_.key(5000, KEY_CAPSLOCK, true);
  deliver();
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  seat_.modifiers(0, lock);
  deliver();
  EXPECT_EQ(reports_, (Reports{"down", "to on"}));
  EXPECT_GE(laterThanFirst(1), 100);
}

TEST_F(WaylandKeyboardsTest, GoOnWhenTheServersClockStartsAgain) {
  enterUnlocked();
  seat_.key(0xFFFFFFFF - 49, KEY_CAPSLOCK, true);
  seat_.key(50, KEY_CAPSLOCK, false);
  deliver();
  EXPECT_EQ(laterThanFirst(1), 100);
}

TEST_F(WaylandKeyboardsTest, DropOtherKeysAndOtherModifiers) {
  enterUnlocked();
  seat_.key(5000, KEY_LEFTSHIFT, true);
  seat_.modifiers(PrivateCompositor::shift, 0);
  seat_.key(5010, KEY_A, true);
  seat_.key(5020, KEY_A, false);
  deliver();
  EXPECT_EQ(reports_, Reports{});
}

TEST_F(WaylandKeyboardsTest, ReportTheLockAsItIsFoundEachTimeTheFocusComes) {
  EXPECT_FALSE(keyboards_->hasFocus());
  seat_.enter(lock);
  deliver();
  EXPECT_TRUE(keyboards_->hasFocus());
  seat_.leave();
  deliver();
  EXPECT_FALSE(keyboards_->hasFocus());
  seat_.enter(0);
  seat_.modifiers(0, 0);
  deliver();
  EXPECT_EQ(reports_, (Reports{"is on", "is off"}));
}

TEST_F(WaylandKeyboardsTest, AreThoseOfEachSeatAlsoOfALaterOne) {
  PrivateCompositor::Seat& second = compositor_.addSeat();
  deliver();
  second.enter(0);
  second.key(5000, KEY_CAPSLOCK, true);
  deliver();
  seat_.enter(0);
  seat_.key(5500, KEY_CAPSLOCK, true);
  deliver();
  EXPECT_EQ(reports_, (Reports{"is off", "down", "is off", "down"}));
}

TEST_F(WaylandKeyboardsTest, ComeAndGo) {
  seat_.enter(0);
  seat_.setHasKeyboard(false);
  deliver();
  EXPECT_FALSE(keyboards_->hasFocus());
  EXPECT_FALSE(seat_.hasKeyboard());
  seat_.setHasKeyboard(true);
  deliver();
  seat_.enter(0);
  deliver();
  EXPECT_TRUE(keyboards_->hasFocus());
  compositor_.removeSeat(seat_);
  deliver();
  EXPECT_FALSE(keyboards_->hasFocus());
  EXPECT_FALSE(seat_.hasKeyboard());
}

TEST_F(WaylandKeyboardsTest, AreGivenBackInTheEnd) {
  ASSERT_TRUE(seat_.hasKeyboard());
  keyboards_.reset();
  deliver();
  EXPECT_FALSE(seat_.hasKeyboard());
}

TEST_F(WaylandKeyboardsTest, IgnoreASeatWhoseKeyboardCannotBeReleased) {
  const PrivateCompositor::Seat& old = compositor_.addSeat(4);
  deliver();
  EXPECT_FALSE(old.hasKeyboard());
}

TEST_F(WaylandKeyboardsTest, MayEndWithinACall) {
  seat_.enter(0);
  deliver();
  int calls = 0;
  std::unique_ptr<WaylandKeyboards> others =
      WaylandKeyboards::open(compositor_.display(), [&](const auto&) {
        ++calls;
        others.reset();
      });
  deliver();
  seat_.enter(0);
  seat_.modifiers(lock, lock);
  seat_.key(5000, KEY_CAPSLOCK, true);
  seat_.modifiers(0, 0);
  deliver();
  EXPECT_EQ(calls, 1);
}

TEST(WaylandKeyboardsWithoutACompositor, AreNot) {
  EXPECT_EQ(waylandDisplay(), nullptr);
  EXPECT_EQ(WaylandKeyboards::open(nullptr, [](const auto&) {}), nullptr);
}

}  // namespace
}  // namespace zephlin
