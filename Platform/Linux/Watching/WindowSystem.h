#pragma once

namespace zephlin {

/// How a program on this desktop learns of keys that other programs' windows receive.
enum class WindowSystem {
  X11,      ///< From the X server.
  Wayland,  ///< From the kernel's event devices, if the user may read them: a compositor reports
            ///< only the keys for the program's own windows.
};

/// What Qt's platform plug-in belongs to. With a plug-in of neither kind, X11 if an X server can be
/// reached. Needs a QGuiApplication. Main thread.
WindowSystem currentWindowSystem();

/// Whether a Wayland compositor or an X server answers at the address in the environment
/// (WAYLAND_DISPLAY, DISPLAY). Asks each of them at most once and leaves no connection behind.
bool isDisplayReachable();

}  // namespace zephlin
