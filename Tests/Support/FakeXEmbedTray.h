#pragma once

#include <QColor>
#include <cstdint>
#include <cstring>

#include "Tests/Support/XConnection.h"

namespace zephlin::test {

/// A tray of the older kind that exists from construction to destruction.
/// Protocol: freedesktop.org, System Tray.
class FakeXEmbedTray {
 public:
  FakeXEmbedTray() : window_(xcb_generate_id(connection_.get())) {
    const std::uint32_t values[] = {connection_.screen().black_pixel, 1};
    xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window_, connection_.root(), 0, 0,
                      side, side, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(connection_.get(), window_);
    setForeground(Qt::red);
    xcb_set_selection_owner(connection_.get(), window_, connection_.atom("_NET_SYSTEM_TRAY_S0"),
                            XCB_CURRENT_TIME);
    announce();
  }

  FakeXEmbedTray(const FakeXEmbedTray&) = delete;
  FakeXEmbedTray& operator=(const FakeXEmbedTray&) = delete;
  ~FakeXEmbedTray() {
    // A tray that ends gives the icons back first.
    if (icon_ != XCB_NONE) {
      xcb_reparent_window(connection_.get(), icon_, connection_.root(), 0, 0);
    }
    xcb_destroy_window(connection_.get(), window_);
    connection_.synchronize();
  }

  /// The colour that symbols are to have.
  void setForeground(const QColor& colour) {
    const QRgba64 foreground = colour.rgba64();
    const std::uint32_t colours[12] = {foreground.red(), foreground.green(), foreground.blue()};
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_,
                        connection_.atom("_NET_SYSTEM_TRAY_COLORS"), XCB_ATOM_CARDINAL, 32, 12,
                        colours);
    xcb_flush(connection_.get());
  }

  /// Announces the tray to everyone.
  void announce() {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = connection_.root();
    message.type = connection_.atom("MANAGER");
    message.data.data32[1] = connection_.atom("_NET_SYSTEM_TRAY_S0");
    message.data.data32[2] = window_;
    xcb_send_event(connection_.get(), 0, connection_.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection_.get());
  }

  /// Takes in an icon that asks for it. Whether there is one by now.
  bool hasIcon() {
    constexpr std::uint32_t requestDock = 0;
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
      if ((event->response_type & 0x7FU) == XCB_CLIENT_MESSAGE &&
          message.type == connection_.atom("_NET_SYSTEM_TRAY_OPCODE") &&
          message.data.data32[1] == requestDock) {
        takeIn(message.data.data32[2]);
      }
    }
    return icon_ != XCB_NONE;
  }

  /// The pixel in the middle of the icon's arrow; black if there is no icon.
  QColor iconColour() {
    const Owned<xcb_get_image_reply_t> image(
        xcb_get_image_reply(connection_.get(),
                            xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_,
                                          side / 2, side / 3, 1, 1, ~0U),
                            nullptr));
    std::uint32_t pixel = 0;
    if (image) {
      std::memcpy(&pixel, xcb_get_image_data(image.get()), sizeof pixel);
    }
    return {static_cast<int>(pixel >> 16U & 0xFFU), static_cast<int>(pixel >> 8U & 0xFFU),
            static_cast<int>(pixel & 0xFFU)};
  }

 private:
  static constexpr std::uint16_t side = 24;

  void takeIn(xcb_window_t icon) {
    icon_ = icon;
    const std::uint32_t size[] = {side, side};
    xcb_reparent_window(connection_.get(), icon, window_, 0, 0);
    xcb_configure_window(connection_.get(), icon,
                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    xcb_map_window(connection_.get(), icon);
    xcb_flush(connection_.get());
  }

  XConnection connection_;
  xcb_window_t window_;
  xcb_window_t icon_ = XCB_NONE;
};

}  // namespace zephlin::test
