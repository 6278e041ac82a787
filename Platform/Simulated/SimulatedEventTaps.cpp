#include "Platform/Simulated/SimulatedEventTaps.h"

#include <utility>

namespace zephlin {

std::unique_ptr<Observation> SimulatedEventTaps::listenToFlagsChanged(
    std::function<void(ModifierFlags flags)> callback) {
  if (!allowed_) {
    return nullptr;
  }
  return taps_.add(std::move(callback));
}

void SimulatedEventTaps::setFlags(ModifierFlags flags) {
  flags_ = flags;
  if (!tracking_.holdsInputBack()) {
    taps_.notification(flags)();
  }
}

}  // namespace zephlin
