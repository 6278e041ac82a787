#pragma once

#include <xcb/xcb.h>

#include <QColor>
#include <memory>

namespace zephlin::test {

/// A tray of the older kind, there from construction to destruction.
/// Protocol: freedesktop.org, System Tray.
class FakeXEmbedTray {
 public:
  FakeXEmbedTray();
  FakeXEmbedTray(const FakeXEmbedTray&) = delete;
  FakeXEmbedTray& operator=(const FakeXEmbedTray&) = delete;
  ~FakeXEmbedTray();

  /// The colour that symbols are to have.
  void setForeground(const QColor& colour);
  /// Tells everyone that the tray is there.
  void announce();
  /// Takes in an icon that asks for it. Whether there is one by now.
  bool hasIcon();
  /// What is seen at the middle of the icon's arrow; black where there is nothing.
  QColor iconColour();

 private:
  [[nodiscard]] xcb_atom_t atom(const char* name) const;
  void takeIn(xcb_window_t icon);

  std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> connection_;
  xcb_screen_t* screen_;
  xcb_window_t window_;
  xcb_window_t icon_ = XCB_NONE;
};

}  // namespace zephlin::test
