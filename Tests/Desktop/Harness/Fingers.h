#pragma once

#include <xcb/xproto.h>

#include <QPoint>
#include <cstdint>
#include <stdexcept>

#include "Tests/Desktop/Harness/Screen.h"

namespace zephlin::test {

/// The physical key, whatever the keymap makes of it.
constexpr std::uint8_t capsLockKeycode = 66;

/// X keysyms that tests press.
enum class Key : xcb_keysym_t {
  Tab = 0xFF09,
  Return = 0xFF0D,
  Escape = 0xFF1B,
  Down = 0xFF54,
  ShiftLeft = 0xFFE1,
  ControlLeft = 0xFFE3,
  CapsLock = 0xFFE5,
  LetterA = 0x61,
  LetterH = 0x68,
};

/// Presses keys and buttons as a person would, with the XTEST extension. The server has
/// processed it when a call returns.
class Fingers {
 public:
  explicit Fingers(const Screen& screen) : connection_(screen.connection()) {}

  void press(Key key) { connection_.fakeInput(XCB_KEY_PRESS, keycodeOf(key)); }

  void release(Key key) { connection_.fakeInput(XCB_KEY_RELEASE, keycodeOf(key)); }

  void tap(Key key) {
    press(key);
    release(key);
  }

  void click(const QPoint& place, int button = 1) {
    moveTo(place);
    connection_.fakeInput(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
    connection_.fakeInput(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
  }

  void moveTo(const QPoint& place) {
    connection_.fakeInput(XCB_MOTION_NOTIFY, 0, static_cast<std::int16_t>(place.x()),
                          static_cast<std::int16_t>(place.y()));
  }

  /// Whether Caps Lock is on, by the core protocol.
  [[nodiscard]] bool isCapsLockOn() const {
    xcb_connection_t* const server = connection_.get();
    const Owned<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(server, xcb_query_pointer(server, connection_.root()), nullptr));
    return pointer && (pointer->mask & XCB_MOD_MASK_LOCK) != 0;
  }

 private:
  [[nodiscard]] std::uint8_t keycodeOf(Key key) const {
    if (key == Key::CapsLock) {
      return capsLockKeycode;
    }
    const xcb_setup_t* const setup = xcb_get_setup(connection_.get());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Owned<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        connection_.get(), xcb_get_keyboard_mapping(connection_.get(), setup->min_keycode, count),
        nullptr));
    const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    for (int index = 0; index < count; ++index) {
      if (symbols[index * mapping->keysyms_per_keycode] == static_cast<xcb_keysym_t>(key)) {
        return static_cast<std::uint8_t>(setup->min_keycode + index);
      }
    }
    throw std::runtime_error("no key has this keysym");
  }

  const XConnection& connection_;
};

}  // namespace zephlin::test
