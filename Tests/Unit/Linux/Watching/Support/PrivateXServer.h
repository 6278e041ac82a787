#pragma once

#include <xcb/xcb.h>

#include <QStringList>
#include <cstdint>
#include <memory>

#include "Platform/Linux/Watching/X11Connection.h"
#include "Tests/Support/Daemon.h"
#include "Tests/Unit/Linux/Watching/Support/EnvironmentVariable.h"

namespace zephlin::test {

/// An X server without a screen, as DISPLAY, whose keys the test presses. It ends with the test.
class PrivateXServer {
 public:
  static constexpr std::uint8_t keyA = 38;
  static constexpr std::uint8_t leftControl = 37;
  static constexpr std::uint8_t leftShift = 50;
  static constexpr std::uint8_t capsLock = 66;

  /// Throws std::runtime_error where it does not start.
  PrivateXServer();
  PrivateXServer(const PrivateXServer&) = delete;
  PrivateXServer& operator=(const PrivateXServer&) = delete;

  /// Runs setxkbmap.
  void setKeyboardMap(const QStringList& arguments);
  void press(std::uint8_t keycode) { sendKey(XCB_KEY_PRESS, keycode); }
  void release(std::uint8_t keycode) { sendKey(XCB_KEY_RELEASE, keycode); }
  void tap(std::uint8_t keycode);
  void kill();

 private:
  void sendKey(std::uint8_t type, std::uint8_t keycode);

  XServer server_;
  EnvironmentVariable display_;
  /// Kept, because the server begins anew when its last client leaves.
  std::unique_ptr<X11Connection> connection_;
};

}  // namespace zephlin::test
