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
    tap_ = taps_.listenToFlagsChanged([this](ModifierFlags flags) { changes_.push_back(flags); });
    ASSERT_NE(tap_, nullptr);
  }
  bool changesBecome(const Flags& expected) {
    test::eventually([&] { return changes_.size() >= expected.size(); });
    return changes_ == expected;
  }

  PrivateXServer server_;
  bool isHeldBack_ = false;
  LinuxEventTaps taps_{WindowSystem::X11, [this] { return isHeldBack_; }};
  Flags changes_;
  std::unique_ptr<Observation> tap_;
};

TEST_F(X11KeyboardStateTest, ReportsEachToggleOnce) {
  listen();
  server_.tap(PrivateXServer::capsLock);
  server_.tap(PrivateXServer::capsLock);
  server_.tap(PrivateXServer::capsLock);
  EXPECT_TRUE(changesBecome({modifierCapsLock, 0, modifierCapsLock}));
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
  tap_ = listenToX11Modifiers([&](ModifierFlags flags) {
    tap_.reset();
    changes.push_back(flags);
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
  LinuxEventTaps taps(WindowSystem::X11, [] { return false; });
  EXPECT_EQ(taps.listenToFlagsChanged([](ModifierFlags) {}), nullptr);
  EXPECT_EQ(taps.currentModifierFlags(), 0U);
}

}  // namespace
}  // namespace zephlin
