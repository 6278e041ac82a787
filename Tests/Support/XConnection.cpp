#include "Tests/Support/XConnection.h"

#include <xcb/xtest.h>

#include <cstring>
#include <stdexcept>

namespace zephlin::test {

XConnection::XConnection(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr)), screen_(nullptr) {
  if (xcb_connection_has_error(connection_.get()) != 0) {
    throw std::runtime_error("no X server at " + display);
  }
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
}

xcb_atom_t XConnection::atom(const std::string& name) const {
  const auto cookie =
      xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(get(), cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::string XConnection::property(xcb_window_t window, const std::string& name) const {
  constexpr std::uint32_t longestInWords = 4096;
  const auto cookie =
      xcb_get_property(get(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, longestInWords);
  const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(get(), cookie, nullptr));
  if (!reply) {
    return {};
  }
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::vector<std::uint32_t> XConnection::numbers(xcb_window_t window,
                                                const std::string& name) const {
  const std::string bytes = property(window, name);
  std::vector<std::uint32_t> result(bytes.size() / sizeof(std::uint32_t));
  std::memcpy(result.data(), bytes.data(), result.size() * sizeof(std::uint32_t));
  return result;
}

void XConnection::synchronize() const {
  const Owned<xcb_get_input_focus_reply_t> reply(
      xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr));
}

void XConnection::fakeInput(std::uint8_t eventType, std::uint8_t detail, std::int16_t x,
                            std::int16_t y) const {
  xcb_test_fake_input(get(), eventType, detail, XCB_CURRENT_TIME, root(), x, y, 0);
  synchronize();
}

}  // namespace zephlin::test
