#include "Tests/Desktop/Harness/Fingers.h"

#include <stdexcept>

namespace zephlin::test {
namespace {

/// The physical key, whatever the keymap makes of it.
constexpr std::uint8_t capsLockKeycode = 66;

}  // namespace

Fingers::Fingers(const Screen& screen) : connection_(screen.connection()) {}

void Fingers::press(Key key) {
  connection_.fakeInput(XCB_KEY_PRESS, keycodeOf(key));
}

void Fingers::release(Key key) {
  connection_.fakeInput(XCB_KEY_RELEASE, keycodeOf(key));
}

void Fingers::tap(Key key) {
  press(key);
  release(key);
}

void Fingers::click(const QPoint& place, int button) {
  moveTo(place);
  connection_.fakeInput(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
  connection_.fakeInput(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
}

void Fingers::moveTo(const QPoint& place) {
  connection_.fakeInput(XCB_MOTION_NOTIFY, 0, static_cast<std::int16_t>(place.x()),
                        static_cast<std::int16_t>(place.y()));
}

bool Fingers::isCapsLockOn() const {
  xcb_connection_t* const server = connection_.get();
  const Owned<xcb_query_pointer_reply_t> pointer(
      xcb_query_pointer_reply(server, xcb_query_pointer(server, connection_.root()), nullptr));
  return pointer && (pointer->mask & XCB_MOD_MASK_LOCK) != 0;
}

std::uint8_t Fingers::keycodeOf(Key key) const {
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

}  // namespace zephlin::test
