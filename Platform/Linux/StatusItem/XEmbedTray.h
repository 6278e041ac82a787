#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QColor>
#include <QObject>
#include <functional>
#include <optional>

namespace zephlin {

/// The older kind of tray, an X client that takes other clients' windows into its own; only on X11
/// displays. Main thread.
/// Protocol: freedesktop.org, System Tray.
class XEmbedTray final : public QAbstractNativeEventFilter {
 public:
  /// `changed` is called from the event loop when a tray has come or has changed its colours.
  explicit XEmbedTray(std::function<void()> changed);
  XEmbedTray(const XEmbedTray&) = delete;
  XEmbedTray& operator=(const XEmbedTray&) = delete;
  ~XEmbedTray() override;

  [[nodiscard]] bool isThere() const { return manager() != XCB_NONE; }
  /// The colour to draw symbols in; absent if the tray does not say.
  [[nodiscard]] std::optional<QColor> foreground() const;
  /// Has `changed` called for the current tray's colours too. To be called again each time Qt's
  /// icon is shown, because Qt then resets which of the tray's events it gets.
  void watchColours() const;

  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

 private:
  [[nodiscard]] xcb_atom_t atom(const char* name) const;
  [[nodiscard]] xcb_window_t manager() const;
  [[nodiscard]] bool isChange(const xcb_generic_event_t& event) const;

  std::function<void()> changed_;
  xcb_connection_t* connection_ = nullptr;
  xcb_atom_t selection_ = XCB_NONE;
  xcb_atom_t managerMessage_ = XCB_NONE;
  xcb_atom_t colours_ = XCB_NONE;
  // Destroyed first: what is still queued does not run.
  QObject context_;
};

}  // namespace zephlin
