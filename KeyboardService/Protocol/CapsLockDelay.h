#pragma once

#include <chrono>
#include <optional>

#include "KeyboardService/Protocol/Properties.h"

namespace zephlin {

/// The longest delay that a keyboard carries.
constexpr std::chrono::milliseconds maximumCapsLockDelay{60'000};

/// What `CapsLockDelayOverride` asks for: how long Caps Lock must be held before it counts, zero
/// for not at all, and none where the system's own behaviour is wanted (unset, negative, or 75,
/// which is that of the systems where the property comes from). Throws BusError if the delay is
/// longer than the longest.
std::optional<std::chrono::milliseconds> capsLockDelay(const PropertySet& properties);

}  // namespace zephlin
