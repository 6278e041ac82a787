#pragma once

namespace zephlin {

/// How a program on this desktop learns of keys that other programs' windows receive.
enum class WindowSystem {
  X11,      ///< From the X server.
  Wayland,  ///< From the kernel's event devices, where the user may read them: a compositor tells
            ///< of no keys but those for the program's own windows.
};

/// The kind that Qt's platform plug-in tells. With a plug-in of neither kind, X11 where an X server
/// can be reached. Needs a QGuiApplication. Main thread.
WindowSystem currentWindowSystem();

}  // namespace zephlin
