#pragma once

#include "Platform/Simulated/SimulatedEventTaps.h"
#include "Platform/Simulated/SimulatedHidDevices.h"
#include "Platform/Simulated/VirtualLoop.h"

namespace zephlin {

/// The Caps Lock key and its neighbours under a user's fingers.
class SimulatedCapsLockKey {
 public:
  SimulatedCapsLockKey(VirtualLoop& loop, SimulatedHidDevices& devices, SimulatedEventTaps& taps)
      : loop_(loop), devices_(devices), taps_(taps) {}

  /// The key goes down. When the press registers, the system's Caps Lock changes after the latency,
  /// and the event taps are told.
  void press(bool registers = true);
  void release();
  void tap(bool registers = true);
  /// From now on; 0 at first, which is within `press`.
  void setLatency(double seconds) { latency_ = ticksFromSeconds(seconds); }

  /// The modifiers beside Caps Lock are now these; taps are told.
  void pressModifier(ModifierFlags flags);
  [[nodiscard]] bool isOn() { return (taps_.currentModifierFlags() & modifierCapsLock) != 0; }

 private:
  void toggle();

  VirtualLoop& loop_;
  SimulatedHidDevices& devices_;
  SimulatedEventTaps& taps_;
  VirtualTicks latency_ = 0;
};

}  // namespace zephlin
