#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Tests/Support/Daemon.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/XConnection.h"

namespace zephlin::test {

/// An X server as this process's DISPLAY, whose keys the test presses.
class PrivateXServer {
 public:
  static constexpr std::uint8_t keyA = 38;
  static constexpr std::uint8_t leftControl = 37;
  static constexpr std::uint8_t leftShift = 50;
  static constexpr std::uint8_t capsLock = 66;

  /// Runs setxkbmap. Throws std::runtime_error if it fails.
  static void setKeyboardMap(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"/usr/bin/setxkbmap"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const Outcome outcome = run(command);
    if (outcome.status != 0) {
      throw std::runtime_error("setxkbmap: " + outcome.errors);
    }
  }

  void press(std::uint8_t keycode) const { connection_->fakeInput(XCB_KEY_PRESS, keycode); }
  void release(std::uint8_t keycode) const { connection_->fakeInput(XCB_KEY_RELEASE, keycode); }
  void tap(std::uint8_t keycode) const {
    press(keycode);
    release(keycode);
  }

  /// Without this, a further press of a modifier key that is down gives no event, even under a map
  /// that makes it an ordinary key. Call it after `setKeyboardMap`.
  void letRepeat(std::uint8_t keycode) const {
    const std::array<std::uint32_t, 2> values{keycode, XCB_AUTO_REPEAT_MODE_ON};
    xcb_change_keyboard_control(connection_->get(), XCB_KB_KEY | XCB_KB_AUTO_REPEAT_MODE,
                                values.data());
  }

  void kill() {
    connection_.reset();
    server_.kill();
  }

 private:
  XServer server_;
  EnvironmentVariable display_{"DISPLAY", ":" + server_.address()};
  std::optional<XConnection> connection_{std::in_place};
};

}  // namespace zephlin::test
