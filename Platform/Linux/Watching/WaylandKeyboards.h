#pragma once

#include <functional>
#include <memory>
#include <variant>

#include "Platform/Keyboard.h"

struct wl_display;

namespace zephlin {

/// The Caps Lock key and the lock, as a Wayland compositor reports them to the window of this
/// program that has the keyboard focus. It needs no permission. The key is the one at Caps Lock's
/// place, whatever it is mapped to, and no other modifier is reported.
///
/// The protocol gives keys a time and modifiers none: a change of the lock has the time of the key
/// event that it arrived with, no matter which of the two came first, and follows it.
class WaylandKeyboards : public Observation {
 public:
  using Event = std::variant<KeyEvent, FlagsEvent>;

  /// Watches the keyboards of all seats over Qt's connection to the compositor. Null if there is
  /// none. Main thread; so are the callbacks.
  static std::unique_ptr<WaylandKeyboards> open(std::function<void(const Event&)> callback);
  /// As above, over a connection whose default queue is dispatched on Qt's loop. Must end before
  /// it.
  static std::unique_ptr<WaylandKeyboards> open(wl_display* display,
                                                std::function<void(const Event&)> callback);

  /// Whether one of this program's windows has the keyboard focus of a seat.
  [[nodiscard]] virtual bool hasFocus() const = 0;
};

}  // namespace zephlin
