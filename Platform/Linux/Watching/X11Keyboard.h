#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <variant>

#include "Platform/Keyboard.h"
#include "Platform/Linux/Watching/X11Connection.h"
#include "Platform/Menu.h"

namespace zephlin {

/// Delivers the key at Caps Lock's place when it goes down on any keyboard of the X server and when
/// it comes up, whatever the key is mapped to and whichever window has the keyboard (XInput 2.1,
/// raw events). Repetitions of a held key are left out. On failure: ECONNREFUSED without an X
/// server, ENOSYS without the extensions XInput 2.1 and XKB, ENXIO without such a key, EACCES if
/// the server refuses to send its raw events. Main thread.
std::variant<std::unique_ptr<Observation>, std::int32_t> openX11CapsLockKey(
    std::function<void(const KeyEvent&)> callback);

/// The current modifiers of the X server's keyboard, over one connection that is kept. Main thread.
class X11KeyboardState {
 public:
  /// Null if the server or its keyboard extension cannot be reached.
  static std::unique_ptr<X11KeyboardState> open();

  /// No flags once the server has gone. Waits for the server.
  [[nodiscard]] ModifierFlags modifierFlags() const;

 private:
  explicit X11KeyboardState(std::unique_ptr<X11Connection> connection)
      : connection_(std::move(connection)) {}

  std::unique_ptr<X11Connection> connection_;
};

/// Calls back with each change of the modifiers, the first one preceded by the modifiers as they
/// were found. Null if the X server or its keyboard extension
/// cannot be reached. Main thread.
std::unique_ptr<Observation> listenToX11Modifiers(std::function<void(const FlagsEvent&)> callback);

}  // namespace zephlin
