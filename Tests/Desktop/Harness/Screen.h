#pragma once

#include <QImage>
#include <QRect>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Tests/Desktop/Harness/Waiting.h"
#include "Tests/Support/Daemon.h"
#include "Tests/Support/XConnection.h"

namespace zephlin::test {

/// An X server with one screen in memory, without a window manager, and what can be seen on it.
class Screen {
 public:
  Screen() : connection_(display()) {
    constexpr std::uint32_t wallpaper = 0x4A6B7C;
    xcb_change_window_attributes(connection_.get(), connection_.root(), XCB_CW_BACK_PIXEL,
                                 &wallpaper);
    xcb_clear_area(connection_.get(), 0, connection_.root(), 0, 0, 0, 0);
    connection_.synchronize();
  }

  /// As DISPLAY names it.
  [[nodiscard]] std::string display() const { return ":" + server_.address(); }
  [[nodiscard]] const XConnection& connection() const { return connection_; }

  /// Nothing but the destructor may be called afterwards.
  void end() { server_.kill(); }

  [[nodiscard]] QSize size() const {
    const xcb_screen_t& screen = connection_.screen();
    return {screen.width_in_pixels, screen.height_in_pixels};
  }

  /// The screen, or the part of it inside the rectangle.
  [[nodiscard]] QImage picture() const { return picture(QRect(QPoint(), size())); }

  [[nodiscard]] QImage picture(const QRect& part) const {
    const auto cookie = xcb_get_image(
        connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection_.root(),
        static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
        static_cast<std::uint16_t>(part.width()), static_cast<std::uint16_t>(part.height()), ~0U);
    const Owned<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(connection_.get(), cookie, nullptr));
    if (!reply) {
      throw std::runtime_error("the screen cannot be read");
    }
    // 24 bits of colour in 32, as Qt's RGB32.
    return QImage(xcb_get_image_data(reply.get()), part.width(), part.height(),
                  QImage::Format_RGB32)
        .copy();
  }

  /// Whether it looks the same after a moment.
  [[nodiscard]] bool isStill() const {
    constexpr double moment = 0.3;
    const QImage before = picture();
    const double later = monotonicSeconds() + moment;
    waitUntil("a moment to pass", [&] { return monotonicSeconds() > later; });
    return picture() == before;
  }

  /// The window that the window manager knows by this title.
  [[nodiscard]] std::optional<xcb_window_t> windowTitled(const std::string& title) const {
    for (const xcb_window_t window : connection_.numbers(connection_.root(), "_NET_CLIENT_LIST")) {
      if (connection_.property(window, "_NET_WM_NAME") == title && isVisible(window)) {
        return window;
      }
    }
    return std::nullopt;
  }

  xcb_window_t waitForWindow(const std::string& title) const {
    waitUntil("the window " + title, [&] { return windowTitled(title).has_value(); });
    return *windowTitled(title);
  }

  void waitUntilNoWindow(const std::string& title) const {
    waitUntil("the window " + title + " to go", [&] { return !windowTitled(title); });
  }

  /// An open menu: a window of an application that the window manager leaves alone.
  [[nodiscard]] std::optional<xcb_window_t> openMenu() const {
    constexpr int smallestMenu = 50;
    const Owned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
        connection_.get(), xcb_query_tree(connection_.get(), connection_.root()), nullptr));
    const xcb_window_t* const first = xcb_query_tree_children(tree.get());
    for (int index = 0; index < xcb_query_tree_children_length(tree.get()); ++index) {
      const xcb_window_t window = first[index];
      const auto attributes = attributesOf(window);
      // A window manager's own windows have no class.
      if (attributes && attributes->override_redirect != 0 && isVisible(window) &&
          !connection_.property(window, "WM_CLASS").empty() &&
          placeOf(window).height() > smallestMenu) {
        return window;
      }
    }
    return std::nullopt;
  }

  [[nodiscard]] std::string titleOfActiveWindow() const {
    const auto active = connection_.numbers(connection_.root(), "_NET_ACTIVE_WINDOW");
    return active.empty() ? "" : connection_.property(active.front(), "_NET_WM_NAME");
  }

  /// On the screen, without the window manager's frame.
  [[nodiscard]] QRect placeOf(xcb_window_t window) const {
    xcb_connection_t* const server = connection_.get();
    const Owned<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(server, xcb_get_geometry(server, window), nullptr));
    const Owned<xcb_translate_coordinates_reply_t> corner(xcb_translate_coordinates_reply(
        server, xcb_translate_coordinates(server, window, connection_.root(), 0, 0), nullptr));
    if (!size || !corner) {
      return {};
    }
    return {corner->dst_x, corner->dst_y, size->width, size->height};
  }

  /// Whether any program has the selection.
  [[nodiscard]] bool hasOwner(const std::string& selection) const {
    const auto cookie = xcb_get_selection_owner(connection_.get(), connection_.atom(selection));
    const Owned<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection_.get(), cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
  }

  /// As the frame's button does.
  void close(xcb_window_t window) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = connection_.atom("_NET_CLOSE_WINDOW");
    xcb_send_event(connection_.get(), 0, connection_.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    connection_.synchronize();
  }

 private:
  [[nodiscard]] Owned<xcb_get_window_attributes_reply_t> attributesOf(xcb_window_t window) const {
    const auto cookie = xcb_get_window_attributes(connection_.get(), window);
    return Owned<xcb_get_window_attributes_reply_t>(
        xcb_get_window_attributes_reply(connection_.get(), cookie, nullptr));
  }

  [[nodiscard]] bool isVisible(xcb_window_t window) const {
    const auto attributes = attributesOf(window);
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
  }

  XServer server_;
  XConnection connection_;
};

}  // namespace zephlin::test
