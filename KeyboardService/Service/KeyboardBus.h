#pragma once

#include <cstdint>
#include <string>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Keyboard.h"
#include "KeyboardService/Protocol/Properties.h"
#include "KeyboardService/Service/KeyboardState.h"

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

  /// Reported once for a keyboard until it disappears. Its state is Default. `identity` names it
  /// for as long as it stays plugged in, to later runs of the service too; it is empty if its
  /// properties are to end with this run.
  virtual void keyboardAppeared(KeyboardBus& bus, BusHandle handle,
                                const KeyboardDescription& description,
                                const std::string& identity) = 0;
  virtual void keyboardDisappeared(KeyboardBus& bus, BusHandle handle) = 0;

  virtual void stateChanged(KeyboardBus& bus, BusHandle handle, const KeyboardState& state) = 0;

  /// The answer to `KeyboardBus::check`. The state reported last is true.
  virtual void checked(KeyboardBus& bus, BusHandle handle) = 0;

  /// The keyboard stays, but has lost all its properties.
  virtual void propertiesDropped(KeyboardBus& bus, BusHandle handle) = 0;
};

/// Supplies keyboards. Everything happens on the thread of the service's event loop, and no
/// operation blocks. A keyboard that has gone, but is not yet reported gone, is not an error.
class KeyboardBus {
 public:
  KeyboardBus() = default;
  KeyboardBus(const KeyboardBus&) = delete;
  KeyboardBus& operator=(const KeyboardBus&) = delete;
  virtual ~KeyboardBus() = default;

  /// Called once. From then on the bus reports to `observer`, which outlives it: keyboards that are
  /// present within this call, others from the event loop.
  virtual void start(KeyboardBusObserver& observer) = 0;

  /// Throws RequestError unless the bus's keyboards can carry these properties.
  virtual void requireCarriable(const PropertySet& properties) const = 0;

  /// Replaces all properties of a keyboard, which have been found carriable. If its state changes
  /// by that, the observer is called: within this call, so that no state is reported that belongs
  /// to the former properties, and again later as the keyboard settles.
  virtual void applyProperties(BusHandle handle, const PropertySet& properties) = 0;

  /// Asks the keyboard anew for its state, after all that was applied to it. The observer's
  /// `checked` is called within this call or later.
  virtual void check(BusHandle handle) = 0;
};

}  // namespace zephlin
