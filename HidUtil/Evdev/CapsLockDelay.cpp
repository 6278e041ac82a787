#include "HidUtil/Evdev/CapsLockDelay.h"

#include <string>

#include "HidUtil/KeyboardBus.h"

namespace zephlin {
namespace {

constexpr std::int64_t systemDelay = 75;

}  // namespace

std::optional<std::chrono::milliseconds> capsLockDelay(const PropertySet& properties) {
  const auto property = properties.find(capsLockDelayKey);
  if (property == properties.end() || property->second < 0 || property->second == systemDelay) {
    return std::nullopt;
  }
  if (property->second > longestCapsLockDelay.count()) {
    throw BusError("CapsLockDelayOverride can be at most " +
                   std::to_string(longestCapsLockDelay.count()) + " on this keyboard");
  }
  return std::chrono::milliseconds(property->second);
}

}  // namespace zephlin
