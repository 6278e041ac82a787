#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

#include "Platform/Dispatch.h"
#include "Platform/Keyboard.h"
#include "Platform/Simulated/ObserverList.h"
#include "Platform/Simulated/VirtualLoop.h"

namespace zephlin {

/// Whether a menu is open or an alert is modal: both hold input back.
struct SimulatedTracking {
  bool menuIsOpen = false;
  int modalAlerts = 0;
  [[nodiscard]] bool holdsInputBack() const { return menuIsOpen || modalAlerts > 0; }
};

class SimulatedHidDevices final : public HidDevices {
 public:
  SimulatedHidDevices(std::shared_ptr<MainQueue> mainQueue, const SimulatedTracking& tracking,
                      const Clock& clock)
      : mainQueue_(std::move(mainQueue)), tracking_(tracking), clock_(clock) {}

  std::unique_ptr<Observation> observeDeviceAppeared(std::function<void()> callback) override;
  std::variant<std::unique_ptr<Observation>, std::int32_t> openCapsLockKey(
      std::function<void(const KeyEvent&)> callback) override;

  std::optional<CapsLockKeyHelp> capsLockKeyHelp() override { return help_; }

  /// From now on devices cannot be observed, or can again.
  void setObservable(bool observable) { observable_ = observable; }
  /// From now on inputs open, or fail with this code.
  void failOpening(std::optional<std::int32_t> code) { openingFailure_ = code; }
  /// From now on this is the help for a Caps Lock key that does not open.
  void setHelp(std::optional<CapsLockKeyHelp> help) { help_ = std::move(help); }

  /// Calls the observers, through the main queue.
  void announceAppeared();
  /// Calls back those who have opened the Caps Lock key, unless input is held back.
  void moveCapsLockKey(bool isDown);

  [[nodiscard]] std::size_t appearedObservers() const { return appeared_.count(); }
  [[nodiscard]] std::size_t openInputs() const { return inputs_.count(); }

 private:
  std::shared_ptr<MainQueue> mainQueue_;
  const SimulatedTracking& tracking_;
  const Clock& clock_;
  bool observable_ = true;
  std::optional<std::int32_t> openingFailure_;
  std::optional<CapsLockKeyHelp> help_;
  ObserverList<> appeared_;
  ObserverList<KeyEvent> inputs_;
};

class SimulatedEventTaps final : public EventTaps {
 public:
  SimulatedEventTaps(const SimulatedTracking& tracking, const Clock& clock)
      : tracking_(tracking), clock_(clock) {}

  std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(const FlagsEvent&)> callback) override;
  ModifierFlags currentModifierFlags() override { return flags_; }

  /// From now on no tap is given, or is again.
  void setAllowed(bool allowed) { allowed_ = allowed; }

  /// Makes these the current flags and delivers the event, unless input is held back.
  void setFlags(ModifierFlags flags);
  /// Makes these the current flags while changes cannot be seen, and delivers them as found.
  void findFlags(ModifierFlags flags);

  [[nodiscard]] std::size_t openTaps() const { return taps_.count(); }

 private:
  const SimulatedTracking& tracking_;
  const Clock& clock_;
  bool allowed_ = true;
  ModifierFlags flags_ = 0;
  ObserverList<FlagsEvent> taps_;
};

/// The Caps Lock key and its neighbours under a user's fingers.
class SimulatedCapsLockKey {
 public:
  SimulatedCapsLockKey(VirtualLoop& loop, SimulatedHidDevices& devices, SimulatedEventTaps& taps)
      : loop_(loop), devices_(devices), taps_(taps) {}

  /// The key goes down. If the press registers, the system's Caps Lock changes after the latency
  /// and the event taps are called.
  void press(bool registers = true);
  void release();
  void tap(bool registers = true);
  /// From now on; 0 at first, which is within `press`.
  void setLatency(double seconds) { latency_ = ticksFromSeconds(seconds); }

  /// Sets the modifiers other than Caps Lock; taps are called.
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
