#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <variant>

#include "Platform/Observation.h"

namespace zephlin {

/// Modifier keys, as a mask of AppKit's values.
using ModifierFlags = std::uint64_t;
constexpr ModifierFlags modifierCapsLock = 1U << 16U;
constexpr ModifierFlags modifierShift = 1U << 17U;
constexpr ModifierFlags modifierCommand = 1U << 20U;

/// Input devices. Main thread; so are the callbacks.
class HidDevices {
 public:
  virtual ~HidDevices() = default;

  /// Calls back each time HID devices of any kind, not only keyboards, have appeared. Devices that
  /// are already there do not count. Null if this cannot be observed.
  virtual std::unique_ptr<Observation> observeDeviceAppeared(std::function<void()> callback) = 0;

  /// Watches the Caps Lock key of every keyboard, and no other key: calls back when it goes down
  /// and when it comes up. Nothing is delivered while a menu of this process is open or an alert
  /// is modal; a menu that another process shows, as panels do on Linux, holds nothing back. On
  /// failure, returns the platform's error code.
  virtual std::variant<std::unique_ptr<Observation>, std::int32_t> openCapsLockKey(
      std::function<void(bool isDown)> callback) = 0;
};

/// The desktop's keyboard events. Main thread; so are the callbacks.
class EventTaps {
 public:
  virtual ~EventTaps() = default;
  /// Calls back with the new modifier flags each time they change, without altering any event.
  /// Input is held back as in HidDevices::openCapsLockKey. If the system disables the tap, the
  /// calls end; it is not enabled again. Null if the user has not allowed it.
  virtual std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(ModifierFlags flags)> callback) = 0;
  /// The keyboard's present flags.
  virtual ModifierFlags currentModifierFlags() = 0;
};

}  // namespace zephlin
