#include "Platform/Linux/Windows/ActivationToken.h"

#include <xcb/xcb.h>

#include <QByteArray>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "Platform/Linux/Windows/GnomeStartup.h"
#include "Platform/Linux/Windows/TitleBar.h"

namespace zephlin {

namespace {

using namespace std::chrono_literals;

/// Long enough for a click on a menu's entry to open its window.
constexpr auto lifetime = 10s;
constexpr const char* waylandVariable = "XDG_ACTIVATION_TOKEN";
constexpr const char* xVariable = "DESKTOP_STARTUP_ID";

struct ActivationToken {
  QString text;
  QDeadlineTimer expiry;
};

ActivationToken& currentToken() {
  static ActivationToken token;
  return token;
}

QString takeToken() {
  const ActivationToken token = std::exchange(currentToken(), {});
  return token.expiry.hasExpired() ? QString() : token.text;
}

QString takeVariable(const char* name) {
  QString value = qEnvironmentVariable(name);
  qunsetenv(name);
  return value;
}

/// Qt's own connection, so that what is sent here comes after Qt's requests.
xcb_connection_t* xConnection() {
  const auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return application == nullptr ? nullptr : application->connection();
}

xcb_window_t rootWindow(xcb_connection_t* server) {
  return xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
}

xcb_atom_t atom(xcb_connection_t* server, const char* name) {
  const auto cookie =
      xcb_intern_atom(server, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
      xcb_intern_atom_reply(server, cookie, nullptr), &std::free);
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// Ends the launcher's busy cursor (freedesktop.org's startup notification): a text in messages of
/// 20 bytes to the root window.
void endStartupNotification(xcb_connection_t* server, const QByteArray& startupId) {
  QByteArray text = "remove: ID=";
  for (const char letter : startupId) {
    if (letter == ' ' || letter == '"' || letter == '\\') {
      text.append('\\');
    }
    text.append(letter);
  }
  text.append('\0');
  const xcb_window_t sender = xcb_generate_id(server);
  const xcb_window_t root = rootWindow(server);
  xcb_create_window(server, XCB_COPY_FROM_PARENT, sender, root, -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 8;
  event.window = sender;
  event.type = atom(server, "_NET_STARTUP_INFO_BEGIN");
  const xcb_atom_t continuation = atom(server, "_NET_STARTUP_INFO");
  constexpr qsizetype piece = sizeof event.data.data8;
  for (qsizetype sent = 0; sent < text.size(); sent += piece) {
    std::fill(std::begin(event.data.data8), std::end(event.data.data8), std::uint8_t{0});
    const QByteArray part = text.mid(sent, piece);
    std::copy(part.begin(), part.end(), std::begin(event.data.data8));
    xcb_send_event(server, 0, root, XCB_EVENT_MASK_PROPERTY_CHANGE,
                   reinterpret_cast<const char*>(&event));
    event.type = continuation;
  }
  xcb_destroy_window(server, sender);
  xcb_flush(server);
}

/// When the user did what the startup id comes from, or 0 for now.
xcb_timestamp_t timeOf(const QString& startupId) {
  constexpr QLatin1String mark("_TIME");
  const qsizetype found = startupId.lastIndexOf(mark);
  return found < 0 ? 0 : startupId.mid(found + mark.size()).toUInt();
}

/// Unlike Qt, says that the user asked for it: otherwise window managers that prevent windows from
/// stealing the focus compare the time with that of the user's last click elsewhere.
void activateUnderX(xcb_connection_t* server, const QWidget& window, xcb_timestamp_t time) {
  constexpr std::uint32_t directUserAction = 2;
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = static_cast<xcb_window_t>(window.winId());
  event.type = atom(server, "_NET_ACTIVE_WINDOW");
  event.data.data32[0] = directUserAction;
  event.data.data32[1] = time;
  xcb_send_event(server, 0, rootWindow(server),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&event));
  xcb_flush(server);
}

/// Qt takes a token for its next activation from the environment only.
void activateWithToken(QWidget& window, const QString& token) {
  if (!token.isEmpty()) {
    qputenv(waylandVariable, token.toUtf8());
  }
  window.activateWindow();
  qunsetenv(waylandVariable);
}

}  // namespace

void setActivationToken(const QString& token) {
  if (token.isEmpty()) {
    return;
  }
  currentToken() = {token, QDeadlineTimer(lifetime)};
  if (xcb_connection_t* const server = xConnection()) {
    endStartupNotification(server, token.toUtf8());
  } else {
    endGnomeStartup(token.toUtf8());
  }
}

QString takeActivationTokenFromEnvironment() {
  const QString waylandToken = takeVariable(waylandVariable);
  const QString startupId = takeVariable(xVariable);
  return waylandToken.isEmpty() ? startupId : waylandToken;
}

void comeToFront(QWidget& window) {
  // Wayland compositors put a new window in front, and many refuse to raise one that is there.
  if (QGuiApplication::platformName().startsWith("wayland") && !window.isActiveWindow()) {
    window.hide();
  }
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.show();
  replaceDecorationOfQt(window);
  window.raise();
  const QString token = takeToken();
  activateWithToken(window, token);
  if (xcb_connection_t* const server = xConnection()) {
    activateUnderX(server, window, timeOf(token));
  }
}

}  // namespace zephlin
