#pragma once

#include <functional>
#include <memory>
#include <variant>

#include "Platform/Keyboard.h"

struct wl_display;

namespace zephlin {

/// Qt's connection to the compositor. Null if Qt has none. Main thread.
wl_display* waylandDisplay();

/// The Caps Lock key and the lock, as a Wayland compositor reports them to the window of this
/// program that has the keyboard focus. It needs no permission. The key is the one at Caps Lock's
/// place, whatever it is mapped to, and no other modifier is reported.
///
/// The protocol gives keys a time and modifiers none: a change of the lock has the time of the key
/// event that it arrived with, no matter which of the two came first, and follows it.
class WaylandKeyboards : public Observation {
 public:
  using Event = std::variant<KeyEvent, FlagsEvent>;

  /// Watches the keyboards of all seats over a connection to the compositor whose default queue is
  /// dispatched on Qt's loop, and which must outlive this. Null without a connection. Main thread;
  /// so are the callbacks.
  static std::unique_ptr<WaylandKeyboards> open(wl_display* display,
                                                std::function<void(const Event&)> callback);

  /// Whether one of this program's windows has the keyboard focus of a seat.
  [[nodiscard]] virtual bool hasFocus() const = 0;
};

}  // namespace zephlin
