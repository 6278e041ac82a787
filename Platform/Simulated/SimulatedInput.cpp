#include "Platform/Simulated/SimulatedInput.h"

namespace zephlin {

std::unique_ptr<Observation> SimulatedHidDevices::observeDeviceAppeared(
    std::function<void()> callback) {
  if (!observable_) {
    return nullptr;
  }
  return appeared_.add(std::move(callback));
}

std::variant<std::unique_ptr<Observation>, std::int32_t> SimulatedHidDevices::openCapsLockKey(
    std::function<void(const KeyEvent&)> callback) {
  if (openingFailure_) {
    return *openingFailure_;
  }
  return inputs_.add(std::move(callback));
}

void SimulatedHidDevices::announceAppeared() {
  mainQueue_->post(appeared_.notification());
}

void SimulatedHidDevices::moveCapsLockKey(bool isDown) {
  if (!tracking_.holdsInputBack()) {
    inputs_.notification({isDown, clock_.now().time_since_epoch()})();
  }
}

std::unique_ptr<Observation> SimulatedEventTaps::listenToFlagsChanged(
    std::function<void(const FlagsEvent&)> callback) {
  if (!allowed_) {
    return nullptr;
  }
  return taps_.add(std::move(callback));
}

void SimulatedEventTaps::setFlags(ModifierFlags flags) {
  flags_ = flags;
  if (!tracking_.holdsInputBack()) {
    taps_.notification({flags, clock_.now().time_since_epoch()})();
  }
}

void SimulatedEventTaps::findFlags(ModifierFlags flags) {
  flags_ = flags;
  taps_.notification({flags, std::nullopt})();
}

void SimulatedCapsLockKey::press(bool registers) {
  devices_.moveCapsLockKey(true);
  if (!registers) {
    return;
  }
  if (latency_ == 0) {
    toggle();
  } else {
    loop_.schedule(loop_.now() + latency_, VirtualLoop::Lane::Main, [this] { toggle(); });
  }
}

void SimulatedCapsLockKey::release() {
  devices_.moveCapsLockKey(false);
}

void SimulatedCapsLockKey::tap(bool registers) {
  press(registers);
  release();
}

void SimulatedCapsLockKey::pressModifier(ModifierFlags flags) {
  const ModifierFlags capsLock = taps_.currentModifierFlags() & modifierCapsLock;
  taps_.setFlags((flags & ~modifierCapsLock) | capsLock);
}

void SimulatedCapsLockKey::toggle() {
  taps_.setFlags(taps_.currentModifierFlags() ^ modifierCapsLock);
}

}  // namespace zephlin
