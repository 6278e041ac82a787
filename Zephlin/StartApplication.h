#pragma once

namespace zephlin {

/// Starts the menu bar application on this machine's desktop, on the main thread, and returns the
/// process's exit status when it has terminated. Where it cannot start, writes the reason to
/// standard error and returns 1.
int startApplication(int argc, char** argv);

}  // namespace zephlin
