#include "Platform/Linux/Watching/LinuxHidDevices.h"

#include <linux/input-event-codes.h>

#include <utility>

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

}  // namespace zephlin
