#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <memory>
#include <thread>
#include <variant>
#include <vector>

#include "Platform/Linux/Watching/LinuxKeyboard.h"
#include "Platform/Linux/Watching/X11Keyboard.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/QtLoop.h"

namespace zephlin {
namespace {

using test::PrivateXServer;
using Values = std::vector<std::int64_t>;

class X11CapsLockKeyTest : public testing::Test {
 protected:
  void open() {
    auto opened = devices_.openCapsLockKey([this](const KeyEvent& event) {
      values_.push_back(event.isDown);
      times_.push_back(event.time);
    });
    key_ = std::move(std::get<std::unique_ptr<Observation>>(opened));
  }
  bool valuesBecome(const Values& expected) {
    test::eventually([&] { return values_.size() >= expected.size(); });
    return values_ == expected;
  }

  PrivateXServer server_;
  bool isHeldBack_ = false;
  LinuxHidDevices devices_{WindowSystem::X11, [this] { return isHeldBack_; }};
  Values values_;
  std::vector<EventTime> times_;
  std::unique_ptr<Observation> key_;
};

TEST_F(X11CapsLockKeyTest, ReportsEachPressAndReleaseOnce) {
  open();
  server_.tap(PrivateXServer::capsLock);
  server_.tap(PrivateXServer::capsLock);
  EXPECT_TRUE(valuesBecome({1, 0, 1, 0}));
}

TEST_F(X11CapsLockKeyTest, ReportsAPressBeforeTheRelease) {
  open();
  server_.press(PrivateXServer::capsLock);
  EXPECT_TRUE(valuesBecome({1}));
  server_.release(PrivateXServer::capsLock);
  EXPECT_TRUE(valuesBecome({1, 0}));
}

TEST_F(X11CapsLockKeyTest, HasTheServersTimesHoweverLateItIsSeen) {
  open();
  const EventTime begin = std::chrono::steady_clock::now().time_since_epoch();
  server_.press(PrivateXServer::capsLock);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  server_.release(PrivateXServer::capsLock);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  ASSERT_TRUE(valuesBecome({1, 0}));
  const EventTime end = std::chrono::steady_clock::now().time_since_epoch();
  EXPECT_GE(times_[1] - times_[0], std::chrono::milliseconds(49));
  EXPECT_LE(times_[1], end - std::chrono::milliseconds(99));
  // The server's clock of milliseconds may be coarse.
  EXPECT_GE(times_[0], begin - std::chrono::milliseconds(10));
}

TEST_F(X11CapsLockKeyTest, IgnoresOtherKeys) {
  open();
  server_.tap(PrivateXServer::keyA);
  server_.tap(PrivateXServer::leftShift);
  server_.tap(PrivateXServer::capsLock);
  server_.tap(PrivateXServer::keyA);
  server_.press(PrivateXServer::capsLock);
  EXPECT_TRUE(valuesBecome({1, 0, 1}));
}

TEST_F(X11CapsLockKeyTest, IsTheKeyAtCapsLocksPlaceWhateverItDoes) {
  server_.setKeyboardMap({"-option", "ctrl:nocaps"});
  open();
  server_.tap(PrivateXServer::leftControl);
  server_.tap(PrivateXServer::capsLock);
  EXPECT_TRUE(valuesBecome({1, 0}));
}

TEST_F(X11CapsLockKeyTest, StaysThatKeyWhenTheMapChanges) {
  open();
  server_.setKeyboardMap({"-option", "ctrl:swapcaps"});
  server_.tap(PrivateXServer::leftControl);
  server_.tap(PrivateXServer::capsLock);
  EXPECT_TRUE(valuesBecome({1, 0}));
}

TEST_F(X11CapsLockKeyTest, CountsARepeatingKeyOnce) {
  server_.setKeyboardMap({"-option", "caps:backspace"});
  server_.letRepeat(PrivateXServer::capsLock);
  open();
  server_.press(PrivateXServer::capsLock);
  server_.press(PrivateXServer::capsLock);
  server_.release(PrivateXServer::capsLock);
  server_.press(PrivateXServer::capsLock);
  EXPECT_TRUE(valuesBecome({1, 0, 1}));
}

TEST_F(X11CapsLockKeyTest, IsHeldBackByAMenu) {
  open();
  isHeldBack_ = true;
  server_.tap(PrivateXServer::capsLock);
  test::runLoopFor(std::chrono::milliseconds(100));
  isHeldBack_ = false;
  server_.press(PrivateXServer::capsLock);
  EXPECT_TRUE(valuesBecome({1}));
}

TEST_F(X11CapsLockKeyTest, EndsWithinACall) {
  Values values;
  auto opened = openX11CapsLockKey([&](const KeyEvent& event) {
    key_.reset();
    values.push_back(event.isDown);
  });
  key_ = std::move(std::get<std::unique_ptr<Observation>>(opened));
  server_.tap(PrivateXServer::capsLock);
  ASSERT_TRUE(test::eventually([&] { return !values.empty(); }));
  test::runLoopFor(std::chrono::milliseconds(50));
  EXPECT_EQ(values, Values{1});
}

TEST_F(X11CapsLockKeyTest, FallsSilentWithTheServer) {
  open();
  server_.kill();
  test::runLoopFor(std::chrono::milliseconds(50));
  EXPECT_EQ(values_, Values{});
}

TEST(X11CapsLockKeyWithoutAServer, FailsWithACode) {
  const test::EnvironmentVariable display("DISPLAY", ":no-display");
  const auto opened = openX11CapsLockKey([](const KeyEvent&) {});
  EXPECT_EQ(std::get<std::int32_t>(opened), ECONNREFUSED);
}

}  // namespace
}  // namespace zephlin
