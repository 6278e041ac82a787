#pragma once

#include <functional>

#include "Tests/Simulation/History.h"

namespace zephlin {

/// A part of the history that still fails, and of which no single event can be left out. `fails`
/// must hold for the history itself.
History shrinkHistory(History history, const std::function<bool(const History&)>& fails);

}  // namespace zephlin
