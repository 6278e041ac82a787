#include "Platform/Linux/Watching/LinuxEventTaps.h"

#include <linux/input-event-codes.h>

#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/EventDevices.h"
#include "Platform/Linux/Watching/X11Keyboard.h"

namespace zephlin {

namespace {

bool isOn(const std::filesystem::path& led) {
  int brightness = 0;
  return std::ifstream(led / "brightness") >> brightness && brightness > 0;
}

/// Whether a keyboard's Caps Lock LED is on, by the files "<device>::capslock/brightness" in the
/// folder of LEDs (Documentation/input/input.rst and leds/leds-class.rst of Linux). One that cannot
/// be read counts as off. Does not wait.
bool isAnyCapsLockLedOn(const std::string& ledFolder) {
  std::error_code error;
  std::filesystem::directory_iterator led(ledFolder, error);
  while (!error && led != std::filesystem::directory_iterator()) {
    if (led->path().string().ends_with("::capslock") && isOn(led->path())) {
      return true;
    }
    led.increment(error);
  }
  return false;
}

ModifierFlags flagsOfLed(bool isOn) {
  return isOn ? modifierCapsLock : 0;
}

/// Other modifiers have no LED. The first change is delivered together with the state before it, so
/// that it counts as a change.
class LedObservation final : public Observation {
 public:
  LedObservation(bool isOn, std::function<void(ModifierFlags)> callback)
      : callback_(std::move(callback)),
        undelivered_{flagsOfLed(isOn)},
        devices_(openEventDevices({EV_LED, LED_CAPSL}, [this](int value) {
          undelivered_.push_back(flagsOfLed(value != 0));
          callback_.callForEach(std::exchange(undelivered_, {}));
        })) {}

  [[nodiscard]] bool isOpen() const {
    return std::holds_alternative<std::unique_ptr<Observation>>(devices_);
  }

 private:
  EndableCallback<ModifierFlags> callback_;
  std::vector<ModifierFlags> undelivered_;
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

std::unique_ptr<Observation> LinuxEventTaps::listenToFlagsChanged(
    std::function<void(ModifierFlags flags)> callback) {
  auto deliver = [isHeldBack = holdsInputBack_,
                  callback = std::move(callback)](ModifierFlags flags) {
    if (!isHeldBack()) {
      callback(flags);
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
