#include "Platform/Simulated/SimulatedEventTaps.h"

#include <utility>

namespace zephlin {

std::unique_ptr<Observation> SimulatedEventTaps::listen(
    std::uint64_t mask, std::function<void(EventType type, ModifierFlags flags)> callback) {
  if (!allowed_) {
    return nullptr;
  }
  return taps_.add(mask, std::move(callback));
}

void SimulatedEventTaps::setFlags(ModifierFlags flags) {
  flags_ = flags;
  if (tracking_.holdsInputBack()) {
    return;
  }
  taps_.notifyIf(
      [](std::uint64_t mask) { return (mask & eventMask(EventType::FlagsChanged)) != 0; },
      EventType::FlagsChanged, flags);
}

void SimulatedEventTaps::announceDisabled() {
  // Such notices come whatever the mask.
  taps_.notifyIf([](std::uint64_t) { return true; }, EventType::TapDisabledByTimeout, 0);
}

}  // namespace zephlin
