#pragma once

#include <optional>
#include <string>

#include "Tests/Simulation/History.h"

namespace zephlin {

/// What went wrong in a history, and when.
struct Violation {
  double seconds = 0;
  std::string what;
};

/// Lets the application live through the history on a simulated desktop, and compares all that it
/// does and shows with what it should. When the events are over the faults are, too, and the
/// application must come to rest in the state of the user's last choice. Returns the first thing
/// that is wrong. Throws std::invalid_argument for an action that does not exist.
///
/// The application is launched at the beginning. An action that is not possible at its time, such
/// as a click in a menu that is not open, is left out; so any part of a history is one, too.
std::optional<Violation> runHistory(const History& history);

}  // namespace zephlin
