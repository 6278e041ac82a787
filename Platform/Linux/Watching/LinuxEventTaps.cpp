#include "Platform/Linux/Watching/LinuxEventTaps.h"

#include <linux/input-event-codes.h>

#include <utility>
#include <variant>
#include <vector>

#include "Platform/Linux/Watching/CapsLockLeds.h"
#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/EventDevices.h"
#include "Platform/Linux/Watching/X11KeyboardState.h"

namespace zephlin {

namespace {

ModifierFlags flagsOfLed(bool isOn) {
  return isOn ? modifierCapsLock : 0;
}

/// Other modifiers have no light. So that the first tap is seen to change something, the state
/// before it is told with it.
class LedObservation final : public Observation {
 public:
  LedObservation(bool isOn, std::function<void(ModifierFlags)> callback)
      : callback_(std::move(callback)),
        untold_{flagsOfLed(isOn)},
        devices_(openEventDevices({EV_LED, LED_CAPSL}, [this](int value) {
          untold_.push_back(flagsOfLed(value != 0));
          callback_.callForEach(std::exchange(untold_, {}));
        })) {}

  [[nodiscard]] bool isOpen() const {
    return std::holds_alternative<std::unique_ptr<Observation>>(devices_);
  }

 private:
  EndableCallback<ModifierFlags> callback_;
  std::vector<ModifierFlags> untold_;
  std::variant<std::unique_ptr<Observation>, std::int32_t> devices_;
};

std::unique_ptr<Observation> listenToLed(bool isOn, std::function<void(ModifierFlags)> callback) {
  auto observation = std::make_unique<LedObservation>(isOn, std::move(callback));
  return observation->isOpen() ? std::move(observation) : nullptr;
}

}  // namespace

LinuxEventTaps::LinuxEventTaps(WindowSystem desktop, std::function<bool()> holdsInputBack,
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
  return desktop_ == WindowSystem::X11
             ? listenToX11Modifiers(std::move(deliver))
             : listenToLed(isAnyCapsLockLedOn(ledFolder_), std::move(deliver));
}

ModifierFlags LinuxEventTaps::currentModifierFlags() {
  if (desktop_ == WindowSystem::Wayland) {
    return flagsOfLed(isAnyCapsLockLedOn(ledFolder_));
  }
  if (!x11State_) {
    x11State_ = X11KeyboardState::open();
  }
  return x11State_ ? x11State_->modifierFlags() : 0;
}

}  // namespace zephlin
