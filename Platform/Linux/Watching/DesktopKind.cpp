#include "Platform/Linux/Watching/DesktopKind.h"

#include <QGuiApplication>

#include "Platform/Linux/Watching/X11Connection.h"

namespace zephlin {

DesktopKind currentDesktopKind() {
  const QString name = QGuiApplication::platformName();
  if (name.startsWith("wayland")) {
    return DesktopKind::Wayland;
  }
  return name == "xcb" || X11Connection::open() ? DesktopKind::X11 : DesktopKind::Wayland;
}

}  // namespace zephlin
