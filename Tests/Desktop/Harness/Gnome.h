#pragma once

#include "Tests/Desktop/Harness/Shell.h"

namespace zephlin::test {

/// GNOME Shell, as a window that fills the screen; programs run on Wayland. Its tray is an
/// extension for application indicators, enabled while there is a panel.
std::unique_ptr<Shell> makeGnome(const Seat& seat);

}  // namespace zephlin::test
