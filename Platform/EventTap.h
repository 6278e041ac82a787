#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "Platform/HidDevices.h"
#include "Platform/Menu.h"

namespace zephlin {

/// With Quartz's values.
enum class EventType : std::uint32_t {
  FlagsChanged = 12,
  TapDisabledByTimeout = 0xFFFFFFFE,
};

/// The set of one event type.
constexpr std::uint64_t eventMask(EventType type) {
  return std::uint64_t{1} << static_cast<std::uint32_t>(type);
}

/// The desktop's keyboard events. Main thread; so are the callbacks.
class EventTaps {
 public:
  virtual ~EventTaps() = default;
  /// Listens to the events of `mask`, and to notices about the tap itself, without altering any.
  /// Input is held back as in HidDevices::openInput. Null where that is not allowed.
  virtual std::unique_ptr<Observation> listen(
      std::uint64_t mask, std::function<void(EventType type, ModifierFlags flags)> callback) = 0;
  /// As the keyboard is now.
  virtual ModifierFlags currentModifierFlags() = 0;
};

}  // namespace zephlin
