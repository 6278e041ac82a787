#pragma once

/// Starts the menu bar application on this machine's desktop, on the main thread, and returns the
/// process's exit status when it has terminated. If it cannot start, writes the reason to standard
/// error and returns 1.
///
/// It has a C name because the program for Linux looks it up in libzephlin-desktop.so.
extern "C" int zephlinStartApplication(int argc, char** argv);

namespace zephlin {

class Platform;

/// Runs the menu bar application on this desktop, on the main thread, until it terminates. Returns
/// the process's exit status.
int runApplication(Platform& platform);

}  // namespace zephlin
