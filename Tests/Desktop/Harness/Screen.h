#pragma once

#include <QImage>
#include <QRect>
#include <optional>
#include <string>
#include <vector>

#include "Tests/Support/Daemon.h"
#include "Tests/Support/XConnection.h"

namespace zephlin::test {

/// An X server with one screen in memory, without a window manager, and what can be seen on it.
class Screen {
 public:
  Screen();

  /// As DISPLAY names it.
  [[nodiscard]] std::string display() const { return ":" + server_.address(); }
  [[nodiscard]] const XConnection& connection() const { return connection_; }

  /// The screen, or the part of it inside the rectangle.
  [[nodiscard]] QImage picture() const;
  [[nodiscard]] QImage picture(const QRect& part) const;
  /// Whether it looks the same after a moment.
  [[nodiscard]] bool isStill() const;

  /// The window that the window manager knows by this title.
  [[nodiscard]] std::optional<xcb_window_t> windowTitled(const std::string& title) const;
  xcb_window_t waitForWindow(const std::string& title) const;
  void waitUntilNoWindow(const std::string& title) const;
  /// An open menu: a window of an application that the window manager leaves alone.
  [[nodiscard]] std::optional<xcb_window_t> openMenu() const;
  [[nodiscard]] std::string titleOfActiveWindow() const;
  /// On the screen, without the window manager's frame.
  [[nodiscard]] QRect placeOf(xcb_window_t window) const;
  /// Whether any program has the selection.
  [[nodiscard]] bool hasOwner(const std::string& selection) const;
  /// As the frame's button does.
  void close(xcb_window_t window) const;

 private:
  [[nodiscard]] Owned<xcb_get_window_attributes_reply_t> attributesOf(xcb_window_t window) const;
  [[nodiscard]] bool isVisible(xcb_window_t window) const;

  XServer server_;
  XConnection connection_;
};

}  // namespace zephlin::test
