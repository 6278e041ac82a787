#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace zephlin::test {

/// What xcb hands out with malloc.
struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, FreeReply>;

/// A connection to an X server, and the few things that tests ask and do. Throws
/// std::runtime_error if there is no server.
class XConnection {
 public:
  /// To the display, such as ":1", or to the one that DISPLAY names.
  explicit XConnection(const std::string& display = {});

  [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
  [[nodiscard]] xcb_window_t root() const { return screen_->root; }
  [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }

  [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
  /// The bytes of a window's property; empty where it has none, or no longer exists.
  [[nodiscard]] std::string property(xcb_window_t window, const std::string& name) const;
  /// The same for a list of windows or atoms.
  [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window,
                                                   const std::string& name) const;

  /// Sends everything and waits until the server has processed it.
  void synchronize() const;

  /// Presses or releases a key or button, or moves the pointer, with the XTEST extension. The
  /// server has processed it when the call returns.
  void fakeInput(std::uint8_t eventType, std::uint8_t detail, std::int16_t x = 0,
                 std::int16_t y = 0) const;

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  const xcb_screen_t* screen_;
};

}  // namespace zephlin::test
