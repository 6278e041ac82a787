#pragma once

#include "Platform/Platform.h"

namespace zephlin {

/// Runs the menu bar application on this desktop, on the main thread, until it terminates. Returns
/// the process's exit status.
int runApplication(Platform& platform);

}  // namespace zephlin
