#include "Platform/Linux/StatusItem/XEmbedTray.h"

#include <QGuiApplication>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "Platform/Linux/Watching/X11Connection.h"

namespace zephlin {

namespace {

std::string selectionName() {
  char* host = nullptr;
  int display = 0;
  int screen = 0;
  if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) {
    std::free(host);
  }
  return "_NET_SYSTEM_TRAY_S" + std::to_string(screen);
}

}  // namespace

XEmbedTray::XEmbedTray(std::function<void()> changed) : changed_(std::move(changed)) {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (!x11) {
    return;
  }
  connection_ = x11->connection();
  selection_ = atom(selectionName().c_str());
  managerMessage_ = atom("MANAGER");
  colours_ = atom("_NET_SYSTEM_TRAY_COLORS");
  // Trays send their messages with the root window's structure events, which Qt asks for.
  qGuiApp->installNativeEventFilter(this);
}

XEmbedTray::~XEmbedTray() {
  qGuiApp->removeNativeEventFilter(this);
}

std::optional<QColor> XEmbedTray::foreground() const {
  const xcb_window_t window = manager();
  if (window == XCB_NONE) {
    return std::nullopt;
  }
  // 16 bits each of red, green and blue: the foreground first, then errors and so on.
  constexpr std::uint32_t wanted = 3;
  const X11Message<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      connection_, xcb_get_property(connection_, 0, window, colours_, XCB_ATOM_CARDINAL, 0, wanted),
      nullptr));
  if (!reply || reply->format != 32 || reply->value_len != wanted) {
    return std::nullopt;
  }
  const auto* const values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return QColor::fromRgba64(static_cast<quint16>(values[0]), static_cast<quint16>(values[1]),
                            static_cast<quint16>(values[2]));
}

void XEmbedTray::watchColours() const {
  const xcb_window_t window = manager();
  if (window == XCB_NONE) {
    return;
  }
  const X11Message<xcb_get_window_attributes_reply_t> present(xcb_get_window_attributes_reply(
      connection_, xcb_get_window_attributes(connection_, window), nullptr));
  if (present) {
    // The connection is Qt's: keep the events that Qt has chosen.
    const std::uint32_t mask = present->your_event_mask | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection_);
  }
}

bool XEmbedTray::nativeEventFilter(const QByteArray& /*type*/, void* message, qintptr* /*result*/) {
  if (isChange(*static_cast<const xcb_generic_event_t*>(message))) {
    // After Qt has seen the event too.
    QMetaObject::invokeMethod(
        &context_, [this] { changed_(); }, Qt::QueuedConnection);
  }
  return false;
}

bool XEmbedTray::isChange(const xcb_generic_event_t& event) const {
  switch (event.response_type & 0x7FU) {
    case XCB_CLIENT_MESSAGE: {
      const auto& sent = reinterpret_cast<const xcb_client_message_event_t&>(event);
      return sent.type == managerMessage_ && sent.data.data32[1] == selection_;
    }
    case XCB_PROPERTY_NOTIFY:
      return reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == colours_;
    default:
      return false;
  }
}

xcb_atom_t XEmbedTray::atom(const char* name) const {
  const auto length = static_cast<std::uint16_t>(std::strlen(name));
  const X11Message<xcb_intern_atom_reply_t> reply(
      xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, length, name), nullptr));
  return reply ? reply->atom : XCB_NONE;
}

xcb_window_t XEmbedTray::manager() const {
  if (!connection_) {
    return XCB_NONE;
  }
  const X11Message<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
      connection_, xcb_get_selection_owner(connection_, selection_), nullptr));
  return reply ? reply->owner : XCB_NONE;
}

}  // namespace zephlin
