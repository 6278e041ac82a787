#include "Platform/Linux/Watching/LinuxKeyboard.h"

#include <linux/input-event-codes.h>

#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/EventDevices.h"
#include "Platform/Linux/Watching/ServiceSubscription.h"
#include "Platform/Linux/Watching/UdevMonitor.h"
#include "Platform/Linux/Watching/X11Keyboard.h"

namespace zephlin {

namespace {

class AppearedObservation final : public Observation {
 public:
  AppearedObservation(std::string socketPath, std::function<void()> callback)
      : callback_(std::move(callback)),
        service_(std::move(socketPath), [this] { callback_.call(); }),
        // A HID device is added before it has a driver; it is usable once a driver is bound to it.
        udev_("hid", "bind", [this](udev_device* /*device*/) { callback_.call(); }) {}

 private:
  EndableCallback<> callback_;
  ServiceSubscription service_;
  UdevMonitor udev_;
};

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

LinuxHidDevices::LinuxHidDevices(WindowSystem desktop, std::function<bool()> holdsInputBack,
                                 std::string socketPath)
    : desktop_(desktop),
      holdsInputBack_(std::move(holdsInputBack)),
      socketPath_(std::move(socketPath)) {}

std::unique_ptr<Observation> LinuxHidDevices::observeDeviceAppeared(
    std::function<void()> callback) {
  return std::make_unique<AppearedObservation>(socketPath_, std::move(callback));
}

std::variant<std::unique_ptr<Observation>, std::int32_t> LinuxHidDevices::openCapsLockKey(
    std::function<void(bool isDown)> callback) {
  auto deliver = [isHeldBack = holdsInputBack_, callback = std::move(callback)](int value) {
    if (!isHeldBack()) {
      callback(value != 0);
    }
  };
  return desktop_ == WindowSystem::X11
             ? openX11CapsLockKey(std::move(deliver))
             : openEventDevices({EV_KEY, KEY_CAPSLOCK}, std::move(deliver));
}

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
