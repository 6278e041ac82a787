#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
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
using Flags = std::vector<ModifierFlags>;

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
    auto opened = devices_.openCapsLockKey([this](bool isDown) { values_.push_back(isDown); });
    if (const auto* code = std::get_if<std::int32_t>(&opened)) {
      return *code;
    }
    key_ = std::move(std::get<std::unique_ptr<Observation>>(opened));
    return 0;
  }
  std::unique_ptr<Observation> listen() {
    return taps_.listenToFlagsChanged([this](ModifierFlags flags) { flags_.push_back(flags); });
  }
  bool valuesBecome(const Values& expected) {
    test::eventually([&] { return values_.size() >= expected.size(); });
    return values_ == expected;
  }
  bool flagsBecome(const Flags& expected) {
    test::eventually([&] { return flags_.size() >= expected.size(); });
    return flags_ == expected;
  }

  MockedDevices machine_;
  bool isHeldBack_ = false;
  LinuxHidDevices devices_{WindowSystem::Wayland, [this] { return isHeldBack_; }};
  test::TemporaryDirectory ledFolder_;
  LinuxEventTaps taps_{WindowSystem::Wayland, [this] { return isHeldBack_; }, ledFolder_.path()};
  Values values_;
  Flags flags_;
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
  const auto tap = listen();
  isHeldBack_ = true;
  machine_.report(1, capsLockKey, {1, 0});
  machine_.report(1, capsLockLed, {1});
  test::runLoopFor(std::chrono::milliseconds(100));
  isHeldBack_ = false;
  EXPECT_EQ(values_, Values{});
  EXPECT_EQ(flags_, Flags{});
}

TEST_F(EventDevicesTest, EndWithinACall) {
  machine_.addKeyboard(1);
  Values values;
  auto opened = openEventDevices(capsLockKey, [&](int value) {
    key_.reset();
    values.push_back(value);
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
  EXPECT_TRUE(flagsBecome({0, modifierCapsLock, 0}));
}

TEST_F(EventDevicesTest, ReportTheStateBeforeTheFirstToggle) {
  machine_.addKeyboard(1);
  const std::filesystem::path led = ledFolder_.path() / "input1::capslock";
  std::filesystem::create_directory(led);
  std::ofstream(led / "brightness") << "1\n";
  const auto tap = listen();
  std::ofstream(led / "brightness") << "0\n";
  machine_.report(1, capsLockLed, {0, 1});
  EXPECT_TRUE(flagsBecome({modifierCapsLock, 0, modifierCapsLock}));
}

TEST_F(EventDevicesTest, ReportNoToggleAfterACallHasEndedThem) {
  machine_.addKeyboard(1);
  std::unique_ptr<Observation> tap;
  tap = taps_.listenToFlagsChanged([&](ModifierFlags flags) {
    tap.reset();
    flags_.push_back(flags);
  });
  machine_.report(1, capsLockLed, {1});
  ASSERT_TRUE(test::eventually([&] { return !flags_.empty(); }));
  test::runLoopFor(std::chrono::milliseconds(50));
  EXPECT_EQ(flags_, Flags{0});
}

TEST_F(EventDevicesTest, ReportNoTogglesIfNoKeyboardHasAnLed) {
  machine_.addKeyboard(1, MockedDevices::Leds::None);
  EXPECT_EQ(listen(), nullptr);
}

}  // namespace
}  // namespace zephlin
