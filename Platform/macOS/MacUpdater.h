#pragma once

#include <memory>

#include "Platform/Updater.h"

namespace zephlin {

/// Sparkle's standard updater, started. Outside a bundle that has Sparkle.framework there is none,
/// and checking does nothing.
std::unique_ptr<Updater> makeMacUpdater();

}  // namespace zephlin
