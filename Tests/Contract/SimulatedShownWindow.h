#pragma once

#include "Platform/Simulated/SimulatedWindows.h"
#include "Tests/Contract/ShownWindow.h"

namespace zephlin::contract {

/// The window's views, laid out as a desktop does it whose letters are as high as their font and
/// half as wide.
ShownWindow laidOut(SimulatedWindow& window);

}  // namespace zephlin::contract
