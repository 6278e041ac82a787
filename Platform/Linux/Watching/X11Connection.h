#pragma once

#include <xcb/xcb.h>
// The header has a member of this name.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include <QSocketNotifier>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

namespace zephlin {

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};
/// A reply, an event or an error of the X server.
template <typename Message>
using X11Message = std::unique_ptr<Message, FreeDeleter>;

/// A connection to the X server of our own, so that selecting events here does not affect Qt's.
/// Main thread.
class X11Connection {
 public:
  /// To the server that DISPLAY names. Null if it cannot be reached.
  static std::unique_ptr<X11Connection> open();

  [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
  [[nodiscard]] xcb_window_t rootWindow() const { return rootWindow_; }
  /// Null if the server does not have the extension. Lives as long as the connection.
  [[nodiscard]] const xcb_query_extension_reply_t* extension(xcb_extension_t* id) const;
  /// Whether a checked request without a reply succeeded. Waits for the server.
  [[nodiscard]] bool succeeds(xcb_void_cookie_t cookie) const;

  /// Whether the server has the X keyboard extension. To be called once before using it; waits for
  /// the server.
  [[nodiscard]] bool useXkb() const;

  /// From now on calls back on Qt's loop when events may have arrived.
  void watch(const std::function<void()>& eventsMayHaveArrived);
  /// The events that have arrived, without waiting.
  std::vector<X11Message<xcb_generic_event_t>> takeEvents();

 private:
  struct Disconnecter {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  using Handle = std::unique_ptr<xcb_connection_t, Disconnecter>;

  X11Connection(Handle connection, xcb_window_t rootWindow)
      : connection_(std::move(connection)), rootWindow_(rootWindow) {}

  Handle connection_;
  xcb_window_t rootWindow_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace zephlin
