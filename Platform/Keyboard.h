#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "Platform/Dispatch.h"
#include "Platform/Observation.h"

namespace zephlin {

/// Modifier keys, as a mask of AppKit's values.
using ModifierFlags = std::uint64_t;
constexpr ModifierFlags modifierCapsLock = 1U << 16U;
constexpr ModifierFlags modifierShift = 1U << 17U;
constexpr ModifierFlags modifierCommand = 1U << 20U;

/// When something happened to a keyboard, on a clock that all keyboard events of a desktop share.
/// On a desktop without a clock of that kind, Clock's time when the event is delivered.
using EventTime = Seconds;

/// A key goes down or comes up.
struct KeyEvent {
  bool isDown = false;
  EventTime time{};
  bool operator==(const KeyEvent&) const = default;
};

/// The modifier flags as they are from now on.
struct FlagsEvent {
  ModifierFlags flags = 0;
  /// When they changed. Absent if this is not a change but the flags as they were found, when
  /// listening began or after a time in which changes could not be seen.
  std::optional<EventTime> changeTime;
  bool operator==(const FlagsEvent&) const = default;
};

/// What the user can do about a Caps Lock key that cannot be watched.
struct CapsLockKeyHelp {
  std::string advice;
  /// Opens a document that says more.
  std::function<void()> open;
};

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
      std::function<void(const KeyEvent&)> callback) = 0;
  /// Absent where there is nothing to add to what the application says itself.
  virtual std::optional<CapsLockKeyHelp> capsLockKeyHelp() { return std::nullopt; }
};

/// The desktop's keyboard events. Main thread; so are the callbacks.
class EventTaps {
 public:
  virtual ~EventTaps() = default;
  /// Calls back each time the modifier flags change, without altering any event.
  /// Input is held back as in HidDevices::openCapsLockKey. If the system disables the tap, the
  /// calls end; it is not enabled again. Null if the user has not allowed it.
  virtual std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(const FlagsEvent&)> callback) = 0;
  /// The keyboard's present flags.
  virtual ModifierFlags currentModifierFlags() = 0;
};

}  // namespace zephlin
