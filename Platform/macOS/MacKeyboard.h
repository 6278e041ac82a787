#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <variant>

#include "Platform/Keyboard.h"

namespace zephlin {

/// IOKit's matching notifications, and its HID manager. The functions run on the main thread.
class MacHidDevices final : public HidDevices {
 public:
  std::unique_ptr<Observation> observeDeviceAppeared(std::function<void()> callback) override;
  /// On failure, the IOReturn of IOHIDManagerOpen: kIOReturnNotPermitted (0xe00002e2) if the
  /// user has not allowed Input Monitoring.
  std::variant<std::unique_ptr<Observation>, std::int32_t> openCapsLockKey(
      std::function<void(const KeyEvent&)> callback) override;
};

/// Quartz event taps of the login session.
class MacEventTaps final : public EventTaps {
 public:
  std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(const FlagsEvent&)> callback) override;
  ModifierFlags currentModifierFlags() override;
};

}  // namespace zephlin
