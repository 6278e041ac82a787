#pragma once

#include <xcb/xproto.h>

#include <QPoint>
#include <cstdint>

#include "Tests/Desktop/Harness/Screen.h"

namespace zephlin::test {

/// X keysyms that tests press.
enum class Key : xcb_keysym_t {
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
  explicit Fingers(const Screen& screen);

  void press(Key key);
  void release(Key key);
  void tap(Key key);
  void click(const QPoint& place, int button = 1);
  void moveTo(const QPoint& place);

  /// Whether Caps Lock is on, by the core protocol.
  [[nodiscard]] bool isCapsLockOn() const;

 private:
  [[nodiscard]] std::uint8_t keycodeOf(Key key) const;

  const XConnection& connection_;
};

}  // namespace zephlin::test
