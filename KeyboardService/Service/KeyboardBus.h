#pragma once

#include <cstdint>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Keyboard.h"
#include "KeyboardService/Protocol/Properties.h"

namespace zephlin {

class KeyboardBus;

/// A bus's own name for one of its keyboards, unique among those that are present.
enum class BusHandle : std::uint64_t {};

/// Told by a bus which keyboards there are.
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

  /// The keyboard, which stays, carries none of its properties any more.
  virtual void propertiesDropped(KeyboardBus& bus, BusHandle handle) = 0;
};

/// Supplies keyboards. Everything happens on the thread of the service's event loop; a bus that
/// discovers keyboards by descriptors or timers is given that loop when it is made.
class KeyboardBus {
 public:
  KeyboardBus() = default;
  KeyboardBus(const KeyboardBus&) = delete;
  KeyboardBus& operator=(const KeyboardBus&) = delete;
  virtual ~KeyboardBus() = default;

  /// Called once. From then on the bus reports to `observer`, which outlives it: keyboards that it
  /// already has within this call, all else at any time from the event loop.
  virtual void start(KeyboardBusObserver& observer) = 0;

  /// Gives a keyboard all properties that it is to carry from now on, in place of the former ones.
  /// Throws RequestError if the keyboard cannot carry them; the former ones are then still in
  /// force. A keyboard that is gone but not yet reported so is no error, as its properties go with
  /// it. Does not call the observer.
  virtual void applyProperties(BusHandle handle, const PropertySet& properties) = 0;
};

}  // namespace zephlin
