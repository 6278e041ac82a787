#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QRect>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Tests/Desktop/Harness/Panel.h"
#include "Tests/Desktop/Harness/Program.h"
#include "Tests/Desktop/Harness/Screen.h"
#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

/// What a shell runs on.
struct Seat {
  const Screen& screen;
  const BusConnection& sessionBus;
  Environment environment;  ///< Of programs of the session, without a display.
  std::string folder;       ///< For its settings and logs.
};

/// A window as the shell lists it.
struct ShownWindow {
  std::string title;
  pid_t process = 0;
  QRect place;  ///< On the screen, without a frame.
  bool isActive = false;
};

/// What an X11 window manager lists.
inline std::vector<ShownWindow> listedWindows(const Screen& screen) {
  const XConnection& server = screen.connection();
  std::vector<ShownWindow> windows;
  const auto active = server.numbers(server.root(), "_NET_ACTIVE_WINDOW");
  for (const xcb_window_t window : server.numbers(server.root(), "_NET_CLIENT_LIST")) {
    const auto process = server.numbers(window, "_NET_WM_PID");
    windows.push_back({server.property(window, "_NET_WM_NAME"),
                       process.empty() ? 0 : static_cast<pid_t>(process.front()),
                       screen.placeOf(window), !active.empty() && active.front() == window});
  }
  return windows;
}

/// What a shell's own script lists: title, process, x, y, width, height and whether it is active.
inline std::vector<ShownWindow> windowsInJson(const QByteArray& list) {
  std::vector<ShownWindow> windows;
  for (const QJsonValue value : QJsonDocument::fromJson(list).array()) {
    const QJsonArray window = value.toArray();
    windows.push_back({window.at(0).toString().toStdString(), window.at(1).toInt(),
                       QRect(window.at(2).toInt(), window.at(3).toInt(), window.at(4).toInt(),
                             window.at(5).toInt()),
                       window.at(6).toBool()});
  }
  return windows;
}

/// The programs that make a screen a desktop: a window manager or compositor, and a panel. They
/// fill the screen, so that a place on it is a place on the desktop, and end with this object.
class Shell {
 public:
  Shell() = default;
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;
  virtual ~Shell() = default;

  /// For the names of pictures.
  [[nodiscard]] virtual std::string name() const = 0;

  /// What programs of the session have in their environment besides the seat's.
  [[nodiscard]] virtual Environment environment() const = 0;

  /// Returns when it takes tray items.
  virtual std::unique_ptr<Panel> startPanel() = 0;

  /// Whether there is a panel that shows tray items.
  [[nodiscard]] virtual bool hasTray(const BusConnection& sessionBus) const {
    return hostIsReady(sessionBus);
  }

  /// To read back what was done with keys and buttons; the panel's own windows may be among them.
  [[nodiscard]] virtual std::vector<ShownWindow> windows() const = 0;

  /// Logs out; nothing but the destructor may be called afterwards.
  virtual void endSession() = 0;
};

using MakeShell = std::function<std::unique_ptr<Shell>(const Seat&)>;

}  // namespace zephlin::test
