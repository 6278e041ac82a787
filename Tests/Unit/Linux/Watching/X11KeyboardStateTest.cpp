#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "Platform/Linux/Watching/LinuxKeyboard.h"
#include "Platform/Linux/Watching/X11Keyboard.h"
#include "Tests/Support/PrivateXServer.h"
#include "Tests/Support/QtLoop.h"

namespace zephlin {
namespace {

using test::PrivateXServer;
using Flags = std::vector<ModifierFlags>;

class X11KeyboardStateTest : public testing::Test {
 protected:
  void listen() {
    tap_ = taps_.listenToFlagsChanged([this](const FlagsEvent& event) {
      if (event.changeTime) {
        changes_.push_back(event.flags);
      } else {
        found_.push_back(event.flags);
      }
    });
    ASSERT_NE(tap_, nullptr);
  }
  bool changesBecome(const Flags& expected) {
    test::eventually([&] { return changes_.size() >= expected.size(); });
    return changes_ == expected;
  }

  PrivateXServer server_;
  bool isHeldBack_ = false;
  LinuxEventTaps taps_{WindowSystem::X11, [this] { return isHeldBack_; }};
  /// Those of changes, and those that were found.
  Flags changes_;
  Flags found_;
  std::unique_ptr<Observation> tap_;
};

TEST_F(X11KeyboardStateTest, ReportsEachToggleOnce) {
  listen();
  server_.tap(PrivateXServer::capsLock);
  server_.tap(PrivateXServer::capsLock);
  server_.tap(PrivateXServer::capsLock);
  EXPECT_TRUE(changesBecome({modifierCapsLock, 0, modifierCapsLock}));
}

TEST_F(X11KeyboardStateTest, ReportsTheStateThatItFoundBeforeTheFirstChange) {
  server_.tap(PrivateXServer::capsLock);
  listen();
  server_.tap(PrivateXServer::capsLock);
  EXPECT_TRUE(changesBecome({0}));
  EXPECT_EQ(found_, Flags{modifierCapsLock});
}

TEST_F(X11KeyboardStateTest, ReportsTheStateThatItFoundAlsoIfTheFirstChangeIsHeldBack) {
  listen();
  isHeldBack_ = true;
  server_.tap(PrivateXServer::leftShift);
  test::runLoopFor(std::chrono::milliseconds(100));
  EXPECT_EQ(found_, Flags{0});
}

TEST_F(X11KeyboardStateTest, ReportsShiftAndControl) {
  listen();
  server_.press(PrivateXServer::leftShift);
  server_.press(PrivateXServer::leftControl);
  server_.release(PrivateXServer::leftShift);
  server_.release(PrivateXServer::leftControl);
  EXPECT_TRUE(changesBecome({modifierShift, modifierShift | modifierCommand, modifierCommand, 0}));
}

TEST_F(X11KeyboardStateTest, IgnoresOrdinaryKeys) {
  listen();
  server_.tap(PrivateXServer::keyA);
  server_.press(PrivateXServer::leftShift);
  EXPECT_TRUE(changesBecome({modifierShift}));
}

TEST_F(X11KeyboardStateTest, IsNotCapsLockIfTheKeyDoesSomethingElse) {
  server_.setKeyboardMap({"-option", "ctrl:nocaps"});
  listen();
  server_.tap(PrivateXServer::capsLock);
  EXPECT_TRUE(changesBecome({modifierCommand, 0}));
}

TEST_F(X11KeyboardStateTest, IsHeldBackByAMenu) {
  listen();
  isHeldBack_ = true;
  server_.tap(PrivateXServer::leftShift);
  test::runLoopFor(std::chrono::milliseconds(100));
  isHeldBack_ = false;
  server_.tap(PrivateXServer::capsLock);
  EXPECT_TRUE(changesBecome({modifierCapsLock}));
}

TEST_F(X11KeyboardStateTest, EndsWithinACall) {
  Flags changes;
  tap_ = listenToX11Modifiers([&](const FlagsEvent& event) {
    if (event.changeTime) {
      tap_.reset();
      changes.push_back(event.flags);
    }
  });
  server_.tap(PrivateXServer::leftShift);
  ASSERT_TRUE(test::eventually([&] { return !changes.empty(); }));
  test::runLoopFor(std::chrono::milliseconds(50));
  EXPECT_EQ(changes, Flags{modifierShift});
}

TEST_F(X11KeyboardStateTest, CanBeAskedAtAnyTime) {
  EXPECT_EQ(taps_.currentModifierFlags(), 0U);
  server_.tap(PrivateXServer::capsLock);
  EXPECT_EQ(taps_.currentModifierFlags(), modifierCapsLock);
  server_.press(PrivateXServer::leftShift);
  EXPECT_EQ(taps_.currentModifierFlags(), modifierCapsLock | modifierShift);
  server_.release(PrivateXServer::leftShift);
  server_.tap(PrivateXServer::capsLock);
  EXPECT_EQ(taps_.currentModifierFlags(), 0U);
}

TEST_F(X11KeyboardStateTest, IsNothingOnceTheServerHasGone) {
  listen();
  server_.tap(PrivateXServer::capsLock);
  ASSERT_TRUE(changesBecome({modifierCapsLock}));
  ASSERT_EQ(taps_.currentModifierFlags(), modifierCapsLock);
  server_.kill();
  test::runLoopFor(std::chrono::milliseconds(50));
  EXPECT_EQ(taps_.currentModifierFlags(), 0U);
}

TEST(X11KeyboardStateWithoutAServer, IsNothing) {
  const test::EnvironmentVariable display("DISPLAY", ":no-display");
  EXPECT_EQ(listenToX11Modifiers([](const FlagsEvent&) {}), nullptr);
  LinuxEventTaps taps(WindowSystem::X11, [] { return false; });
  EXPECT_EQ(taps.currentModifierFlags(), 0U);
}

}  // namespace
}  // namespace zephlin
