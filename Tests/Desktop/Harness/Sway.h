#pragma once

#include "Tests/Desktop/Harness/Shell.h"

namespace zephlin::test {

/// sway, as a window that fills the screen, and waybar; programs run on Wayland.
std::unique_ptr<Shell> makeSway(const Seat& seat);

}  // namespace zephlin::test
