#include "Platform/Linux/Watching/WindowSystem.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <QGuiApplication>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Base/FileDescriptor.h"
#include "Platform/Linux/Watching/X11Connection.h"

namespace zephlin {

namespace {

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

bool listensOn(const std::string& path) {
  sockaddr_un address{};
  if (path.size() >= sizeof address.sun_path) {
    return false;
  }
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size());
  const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

/// The name is a path, or a file of the runtime directory (wl_display_connect).
bool isWaylandReachable() {
  const std::string name = environment("WAYLAND_DISPLAY");
  if (name.empty()) {
    return false;
  }
  return listensOn(name.front() == '/' ? name : environment("XDG_RUNTIME_DIR") + "/" + name);
}

bool isXReachable() {
  return !environment("DISPLAY").empty() && X11Connection::open() != nullptr;
}

}  // namespace

WindowSystem currentWindowSystem() {
  const QString name = QGuiApplication::platformName();
  if (name.startsWith("wayland")) {
    return WindowSystem::Wayland;
  }
  return name == "xcb" || X11Connection::open() ? WindowSystem::X11 : WindowSystem::Wayland;
}

bool isDisplayReachable() {
  return isWaylandReachable() || isXReachable();
}

}  // namespace zephlin
