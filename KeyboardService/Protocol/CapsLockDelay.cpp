#include "KeyboardService/Protocol/CapsLockDelay.h"

#include <string>

#include "KeyboardService/Service/KeyboardBus.h"

namespace zephlin {
namespace {

constexpr std::int64_t systemDelay = 75;

}  // namespace

std::optional<std::chrono::milliseconds> capsLockDelay(const PropertySet& properties) {
  const auto property = properties.find(capsLockDelayKey);
  if (property == properties.end() || property->second < 0 || property->second == systemDelay) {
    return std::nullopt;
  }
  if (property->second > maximumCapsLockDelay.count()) {
    throw BusError("CapsLockDelayOverride can be at most " +
                   std::to_string(maximumCapsLockDelay.count()) + " on this keyboard");
  }
  return std::chrono::milliseconds(property->second);
}

}  // namespace zephlin
