#pragma once

#include <cstdint>

#include "Tests/Simulation/History.h"

namespace zephlin {

/// A random history, the same for the same arguments: some `days` with an event each minute on
/// average, mostly in bursts.
History generateHistory(std::uint64_t seed, double days);

}  // namespace zephlin
