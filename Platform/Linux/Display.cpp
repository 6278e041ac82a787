#include "Platform/Linux/Display.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "Base/FileDescriptor.h"

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
  if (environment("DISPLAY").empty()) {
    return false;
  }
  const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
      xcb_connect(nullptr, nullptr), &xcb_disconnect);
  return xcb_connection_has_error(connection.get()) == 0;
}

}  // namespace

bool isDisplayReachable() {
  return isWaylandReachable() || isXReachable();
}

}  // namespace zephlin
