#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Linux/Watching/LinuxKeyboard.h"
#include "Tests/Support/QtLoop.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Unit/Linux/Watching/Support/MockedDevices.h"
#include "Tests/Unit/Linux/Watching/Support/PrivateCompositor.h"

namespace zephlin {
namespace {

using test::MockedDevices;
using test::PrivateCompositor;
using Reports = std::vector<std::string>;

/// A keyboard of a Wayland session that both the compositor and the event devices report. What a
/// mocked device reports reaches one reader only, so a test opens either the key or the tap.
class FocusedKeyboardTest : public testing::Test {
 protected:
  static constexpr EventKind capsLockKey{EV_KEY, KEY_CAPSLOCK};
  static constexpr EventKind capsLockLed{EV_LED, LED_CAPSL};

  void openKey() {
    auto opened = devices_.openCapsLockKey(
        [this](const KeyEvent& event) { reports_.emplace_back(event.isDown ? "down" : "up"); });
    ASSERT_TRUE(std::holds_alternative<std::unique_ptr<Observation>>(opened));
    key_ = std::move(std::get<std::unique_ptr<Observation>>(opened));
    compositor_.deliver();
  }
  void openTap() {
    tap_ = taps_.listenToFlagsChanged([this](const FlagsEvent& event) {
      if (event.changeTime) {
        reports_.emplace_back(event.flags == 0 ? "off" : "on");
      }
    });
    ASSERT_NE(tap_, nullptr);
    compositor_.deliver();
  }

  void report(EventKind kind, const std::vector<int>& values) {
    machine_.report(1, kind, values);
    settle();
  }
  void lockInCompositor() {
    seat_.key(1000, KEY_CAPSLOCK, true);
    seat_.modifiers(PrivateCompositor::lock, PrivateCompositor::lock);
    seat_.key(1080, KEY_CAPSLOCK, false);
    seat_.modifiers(0, PrivateCompositor::lock);
    compositor_.deliver();
    settle();
  }
  static void settle() { test::runLoopFor(std::chrono::milliseconds(50)); }

  MockedDevices machine_;
  test::TemporaryDirectory ledFolder_;
  PrivateCompositor compositor_;
  PrivateCompositor::Seat& seat_ = compositor_.addSeat();
  LinuxHidDevices devices_{WindowSystem::Wayland, [] { return false; }, "",
                           [this] { return compositor_.display(); }};
  LinuxEventTaps taps_{WindowSystem::Wayland, [] { return false; }, ledFolder_.path(),
                       [this] { return compositor_.display(); }};
  Reports reports_;
  std::unique_ptr<Observation> key_;
  std::unique_ptr<Observation> tap_;
};

TEST_F(FocusedKeyboardTest, ReportsAPressOnceWithTheFocusAndWithout) {
  machine_.addKeyboard(1);
  openKey();
  report(capsLockKey, {1, 0});
  EXPECT_EQ(reports_, (Reports{"down", "up"}));
  seat_.enter(0);
  compositor_.deliver();
  report(capsLockKey, {1, 0});
  lockInCompositor();
  EXPECT_EQ(reports_, (Reports{"down", "up", "down", "up"}));
}

TEST_F(FocusedKeyboardTest, ReportsAToggleOnceWithTheFocusAndWithout) {
  machine_.addKeyboard(1);
  openTap();
  seat_.enter(0);
  compositor_.deliver();
  report(capsLockLed, {1});
  lockInCompositor();
  EXPECT_EQ(reports_, Reports{"on"});
  seat_.leave();
  compositor_.deliver();
  report(capsLockLed, {0});
  EXPECT_EQ(reports_, (Reports{"on", "off"}));
}

TEST_F(FocusedKeyboardTest, NeedsNoEventDevice) {
  openKey();
  openTap();
  seat_.enter(0);
  compositor_.deliver();
  lockInCompositor();
  EXPECT_EQ(reports_, (Reports{"down", "on", "up"}));
}

}  // namespace
}  // namespace zephlin
