#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Linux/Watching/EventDevices.h"
#include "Platform/Linux/Watching/LinuxKeyboard.h"
#include "Tests/Support/QtLoop.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Unit/Linux/Watching/Support/MockedDevices.h"

namespace zephlin {
namespace {

using test::MockedDevices;
using Values = std::vector<std::int64_t>;
/// Flags, and whether they have changed or were found so.
using Changes = std::vector<std::pair<ModifierFlags, bool>>;

constexpr EventKind capsLockKey{EV_KEY, KEY_CAPSLOCK};
constexpr EventKind capsLockLed{EV_LED, LED_CAPSL};
constexpr EventKind keyA{EV_KEY, KEY_A};

/// Takes root's rights over files away for a while.
class OrdinaryUser {
 public:
  OrdinaryUser() : former_(::geteuid()) {
    if (former_ == 0 && ::seteuid(65534) != 0) {
      throw std::runtime_error("the process cannot become an ordinary one");
    }
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser() { EXPECT_EQ(::seteuid(former_), 0); }

 private:
  uid_t former_;
};

class EventDevicesTest : public testing::Test {
 protected:
  std::int32_t open() {
    auto opened = devices_.openCapsLockKey(
        [this](const KeyEvent& event) { values_.push_back(event.isDown); });
    if (const auto* code = std::get_if<std::int32_t>(&opened)) {
      return *code;
    }
    key_ = std::move(std::get<std::unique_ptr<Observation>>(opened));
    return 0;
  }
  std::unique_ptr<Observation> listen() {
    return taps_.listenToFlagsChanged([this](const FlagsEvent& event) {
      changes_.emplace_back(event.flags, event.changeTime.has_value());
    });
  }
  bool valuesBecome(const Values& expected) {
    test::eventually([&] { return values_.size() >= expected.size(); });
    return values_ == expected;
  }
  bool changesBecome(const Changes& expected) {
    test::eventually([&] { return changes_.size() >= expected.size(); });
    return changes_ == expected;
  }

  MockedDevices machine_;
  bool isHeldBack_ = false;
  LinuxHidDevices devices_{WindowSystem::Wayland, [this] { return isHeldBack_; }};
  test::TemporaryDirectory ledFolder_;
  LinuxEventTaps taps_{WindowSystem::Wayland, [this] { return isHeldBack_; }, ledFolder_.path()};
  Values values_;
  Changes changes_;
  std::unique_ptr<Observation> key_;
};

TEST_F(EventDevicesTest, ReportEachPressAndReleaseOnEachKeyboard) {
  machine_.addKeyboard(1);
  machine_.addKeyboard(2, MockedDevices::Leds::None);
  ASSERT_EQ(open(), 0);
  machine_.report(1, capsLockKey, {1, 0});
  ASSERT_TRUE(valuesBecome({1, 0}));
  machine_.report(2, capsLockKey, {1, 0});
  EXPECT_TRUE(valuesBecome({1, 0, 1, 0}));
}

TEST_F(EventDevicesTest, IgnoreOtherKeysAndRepetitions) {
  machine_.addKeyboard(1);
  ASSERT_EQ(open(), 0);
  machine_.report(1, keyA, {1, 0});
  machine_.report(1, capsLockLed, {1});
  machine_.report(1, capsLockKey, {1, 2, 2, 0});
  EXPECT_TRUE(valuesBecome({1, 0}));
}

TEST_F(EventDevicesTest, AreOnlyKeyboards) {
  machine_.addKeyboard(1);
  machine_.addPointer(2);
  ASSERT_EQ(open(), 0);
  machine_.report(2, capsLockKey, {1, 0});
  test::runLoopFor(std::chrono::milliseconds(50));
  machine_.report(1, capsLockKey, {1});
  EXPECT_TRUE(valuesBecome({1}));
}

TEST_F(EventDevicesTest, IncludeAKeyboardThatAppearsLater) {
  machine_.addKeyboard(1);
  ASSERT_EQ(open(), 0);
  machine_.announce(machine_.addKeyboard(2), "add");
  machine_.announce(machine_.addPointer(3), "add");
  test::runLoopFor(std::chrono::milliseconds(50));
  machine_.report(3, capsLockKey, {1, 0});
  machine_.report(2, capsLockKey, {1});
  EXPECT_TRUE(valuesBecome({1}));
  machine_.report(2, capsLockKey, {0});
  EXPECT_TRUE(valuesBecome({1, 0}));
}

TEST_F(EventDevicesTest, GoOnWithoutAKeyboardThatGoes) {
  machine_.addKeyboard(1);
  machine_.addKeyboard(2);
  ASSERT_EQ(open(), 0);
  machine_.remove(1);
  test::runLoopFor(std::chrono::milliseconds(50));
  machine_.report(2, capsLockKey, {1, 0});
  EXPECT_TRUE(valuesBecome({1, 0}));
}

TEST_F(EventDevicesTest, AreHeldBackByAMenu) {
  machine_.addKeyboard(1);
  ASSERT_EQ(open(), 0);
  isHeldBack_ = true;
  machine_.report(1, capsLockKey, {1, 0});
  test::runLoopFor(std::chrono::milliseconds(100));
  isHeldBack_ = false;
  machine_.report(1, capsLockKey, {1});
  EXPECT_TRUE(valuesBecome({1}));
}

TEST_F(EventDevicesTest, HoldTogglesBackDuringAMenuWithoutLosingTheState) {
  machine_.addKeyboard(1);
  const auto tap = listen();
  isHeldBack_ = true;
  machine_.report(1, capsLockLed, {1});
  test::runLoopFor(std::chrono::milliseconds(100));
  isHeldBack_ = false;
  machine_.report(1, capsLockLed, {0});
  EXPECT_TRUE(changesBecome({{0, false}, {modifierCapsLock, false}, {0, true}}));
}

TEST_F(EventDevicesTest, EndWithinACall) {
  machine_.addKeyboard(1);
  Values values;
  auto opened = openEventDevices(capsLockKey, [&](const EventValue& event) {
    key_.reset();
    values.push_back(event.value);
  });
  key_ = std::move(std::get<std::unique_ptr<Observation>>(opened));
  machine_.report(1, capsLockKey, {1, 0});
  ASSERT_TRUE(test::eventually([&] { return !values.empty(); }));
  test::runLoopFor(std::chrono::milliseconds(50));
  EXPECT_EQ(values, Values{1});
}

TEST_F(EventDevicesTest, FailWithoutAKeyboard) {
  EXPECT_EQ(open(), ENOENT);
  machine_.addPointer(1);
  EXPECT_EQ(open(), ENOENT);
  EXPECT_EQ(listen(), nullptr);
}

TEST_F(EventDevicesTest, FailIfTheUserMayReadNone) {
  machine_.addForbiddenKeyboard(1);
  const OrdinaryUser user;
  EXPECT_EQ(open(), EACCES);
}

TEST_F(EventDevicesTest, ReportTheTogglesOfTheLed) {
  machine_.addKeyboard(1);
  const auto tap = listen();
  ASSERT_NE(tap, nullptr);
  machine_.report(1, capsLockKey, {1, 0});
  machine_.report(1, {EV_LED, LED_NUML}, {1});
  machine_.report(1, capsLockLed, {1, 0});
  EXPECT_TRUE(
      changesBecome({{0, false}, {modifierCapsLock, true}, {modifierCapsLock, false}, {0, true}}));
}

TEST_F(EventDevicesTest, ReportTheStateBeforeEachToggle) {
  machine_.addKeyboard(1);
  const std::filesystem::path led = ledFolder_.path() / "input1::capslock";
  std::filesystem::create_directory(led);
  std::ofstream(led / "brightness") << "1\n";
  const auto tap = listen();
  std::ofstream(led / "brightness") << "0\n";
  machine_.report(1, capsLockLed, {0, 1});
  EXPECT_TRUE(
      changesBecome({{modifierCapsLock, false}, {0, true}, {0, false}, {modifierCapsLock, true}}));
}

TEST_F(EventDevicesTest, ReportNoToggleAfterACallHasEndedThem) {
  machine_.addKeyboard(1);
  std::unique_ptr<Observation> tap;
  tap = taps_.listenToFlagsChanged([&](const FlagsEvent& event) {
    tap.reset();
    changes_.emplace_back(event.flags, event.changeTime.has_value());
  });
  machine_.report(1, capsLockLed, {1});
  ASSERT_TRUE(test::eventually([&] { return !changes_.empty(); }));
  test::runLoopFor(std::chrono::milliseconds(50));
  EXPECT_EQ(changes_, (Changes{{0, false}}));
}

TEST_F(EventDevicesTest, ReportNoTogglesIfNoKeyboardHasAnLed) {
  machine_.addKeyboard(1, MockedDevices::Leds::None);
  EXPECT_EQ(listen(), nullptr);
}

}  // namespace
}  // namespace zephlin
