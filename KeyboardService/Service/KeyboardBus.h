#pragma once

#include <cstdint>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Keyboard.h"
#include "KeyboardService/Protocol/Properties.h"

namespace zephlin {

class KeyboardBus;

/// A bus's own name for one of its keyboards, unique among those that are present.
enum class BusHandle : std::uint64_t {};

/// Receives a bus's reports about its keyboards.
class KeyboardBusObserver {
 public:
  KeyboardBusObserver() = default;
  KeyboardBusObserver(const KeyboardBusObserver&) = delete;
  KeyboardBusObserver& operator=(const KeyboardBusObserver&) = delete;
  virtual ~KeyboardBusObserver() = default;

  /// Reported once for a keyboard until it disappears.
  virtual void keyboardAppeared(KeyboardBus& bus, BusHandle handle,
                                const KeyboardDescription& description) = 0;
  virtual void keyboardDisappeared(KeyboardBus& bus, BusHandle handle) = 0;

  /// The keyboard stays, but has lost all its properties.
  virtual void propertiesDropped(KeyboardBus& bus, BusHandle handle) = 0;
};

/// Supplies keyboards. Everything happens on the thread of the service's event loop.
class KeyboardBus {
 public:
  KeyboardBus() = default;
  KeyboardBus(const KeyboardBus&) = delete;
  KeyboardBus& operator=(const KeyboardBus&) = delete;
  virtual ~KeyboardBus() = default;

  /// Called once. From then on the bus reports to `observer`, which outlives it: keyboards that are
  /// present within this call, everything else from the event loop.
  virtual void start(KeyboardBusObserver& observer) = 0;

  /// Replaces all properties of a keyboard. Throws RequestError if it cannot carry them; the former
  /// ones then stay in force. A keyboard that has gone, but is not yet reported gone, is not an
  /// error. Does not call the observer.
  virtual void applyProperties(BusHandle handle, const PropertySet& properties) = 0;
};

}  // namespace zephlin
