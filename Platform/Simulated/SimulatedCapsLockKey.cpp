#include "Platform/Simulated/SimulatedCapsLockKey.h"

namespace zephlin {

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
