#pragma once

#include <QColor>

#include "Tests/Support/XConnection.h"

namespace zephlin::test {

/// A tray of the older kind that exists from construction to destruction.
/// Protocol: freedesktop.org, System Tray.
class FakeXEmbedTray {
 public:
  FakeXEmbedTray();
  FakeXEmbedTray(const FakeXEmbedTray&) = delete;
  FakeXEmbedTray& operator=(const FakeXEmbedTray&) = delete;
  ~FakeXEmbedTray();

  /// The colour that symbols are to have.
  void setForeground(const QColor& colour);
  /// Announces the tray to everyone.
  void announce();
  /// Takes in an icon that asks for it. Whether there is one by now.
  bool hasIcon();
  /// The pixel in the middle of the icon's arrow; black if there is no icon.
  QColor iconColour();

 private:
  void takeIn(xcb_window_t icon);

  XConnection connection_;
  xcb_window_t window_;
  xcb_window_t icon_ = XCB_NONE;
};

}  // namespace zephlin::test
