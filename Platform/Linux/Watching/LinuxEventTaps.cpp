#include "Platform/Linux/Watching/LinuxEventTaps.h"

#include <linux/input-event-codes.h>

#include <utility>
#include <variant>

#include "Platform/Linux/Watching/CapsLockLeds.h"
#include "Platform/Linux/Watching/EventDevices.h"
#include "Platform/Linux/Watching/X11KeyboardState.h"

namespace zephlin {

namespace {

std::unique_ptr<Observation> listenToLeds(std::function<void(ModifierFlags)> callback) {
  auto opened = openEventDevices({EV_LED, LED_CAPSL}, [callback = std::move(callback)](int value) {
    callback(value != 0 ? modifierCapsLock : 0);
  });
  auto* observation = std::get_if<std::unique_ptr<Observation>>(&opened);
  return observation != nullptr ? std::move(*observation) : nullptr;
}

}  // namespace

LinuxEventTaps::LinuxEventTaps(DesktopKind desktop, std::function<bool()> holdsInputBack,
                               std::string ledFolder)
    : desktop_(desktop),
      holdsInputBack_(std::move(holdsInputBack)),
      ledFolder_(std::move(ledFolder)) {}

LinuxEventTaps::~LinuxEventTaps() = default;

std::unique_ptr<Observation> LinuxEventTaps::listen(
    std::uint64_t mask, std::function<void(EventType type, ModifierFlags flags)> callback) {
  if (mask != eventMask(EventType::FlagsChanged)) {
    return nullptr;
  }
  auto deliver = [isHeldBack = holdsInputBack_,
                  callback = std::move(callback)](ModifierFlags flags) {
    if (!isHeldBack()) {
      callback(EventType::FlagsChanged, flags);
    }
  };
  return desktop_ == DesktopKind::X11 ? listenToX11Modifiers(std::move(deliver))
                                      : listenToLeds(std::move(deliver));
}

ModifierFlags LinuxEventTaps::currentModifierFlags() {
  if (desktop_ == DesktopKind::Wayland) {
    return isAnyCapsLockLedOn(ledFolder_) ? modifierCapsLock : 0;
  }
  if (!x11State_) {
    x11State_ = X11KeyboardState::open();
  }
  return x11State_ ? x11State_->modifierFlags() : 0;
}

}  // namespace zephlin
