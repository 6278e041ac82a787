#include "Platform/Linux/Watching/WindowSystem.h"

#include <QGuiApplication>

#include "Platform/Linux/Watching/X11Connection.h"

namespace zephlin {

WindowSystem currentWindowSystem() {
  const QString name = QGuiApplication::platformName();
  if (name.startsWith("wayland")) {
    return WindowSystem::Wayland;
  }
  return name == "xcb" || X11Connection::open() ? WindowSystem::X11 : WindowSystem::Wayland;
}

}  // namespace zephlin
