#pragma once

#include "Tests/Desktop/Harness/Shell.h"

namespace zephlin::test {

/// KWin, as a window that fills the screen, and Plasma's panel; programs run on Wayland.
std::unique_ptr<Shell> makePlasmaOnWayland(const Seat& seat);

/// The same on X11, where KWin is the screen's window manager.
std::unique_ptr<Shell> makePlasmaOnX11(const Seat& seat);

}  // namespace zephlin::test
