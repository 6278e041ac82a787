#pragma once

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
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
  explicit XConnection(const std::string& display = {})
      : connection_(xcb_connect(display.c_str(), nullptr)), screen_(nullptr) {
    if (xcb_connection_has_error(connection_.get()) != 0) {
      throw std::runtime_error("no X server at " + display);
    }
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
  }

  [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
  [[nodiscard]] xcb_window_t root() const { return screen_->root; }
  [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }

  [[nodiscard]] xcb_atom_t atom(const std::string& name) const {
    const auto cookie =
        xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(get(), cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  /// The bytes of a window's property; empty where it has none, or no longer exists.
  [[nodiscard]] std::string property(xcb_window_t window, const std::string& name) const {
    constexpr std::uint32_t longestInWords = 4096;
    const auto cookie = xcb_get_property(get(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0,
                                         longestInWords);
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(get(), cookie, nullptr));
    if (!reply) {
      return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
  }

  /// The same for a list of windows or atoms.
  [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window,
                                                   const std::string& name) const {
    const std::string bytes = property(window, name);
    std::vector<std::uint32_t> result(bytes.size() / sizeof(std::uint32_t));
    std::memcpy(result.data(), bytes.data(), result.size() * sizeof(std::uint32_t));
    return result;
  }

  /// Sends everything and waits until the server has processed it.
  void synchronize() const {
    const Owned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
  }

  /// Presses or releases a key or button, or moves the pointer, with the XTEST extension. The
  /// server has processed it when the call returns.
  void fakeInput(std::uint8_t eventType, std::uint8_t detail, std::int16_t x = 0,
                 std::int16_t y = 0) const {
    xcb_test_fake_input(get(), eventType, detail, XCB_CURRENT_TIME, root(), x, y, 0);
    synchronize();
  }

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  const xcb_screen_t* screen_;
};

}  // namespace zephlin::test
