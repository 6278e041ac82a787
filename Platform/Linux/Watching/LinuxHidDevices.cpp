#include "Platform/Linux/Watching/LinuxHidDevices.h"

#include <linux/input-event-codes.h>

#include <cerrno>
#include <utility>

#include "Platform/Linux/Watching/EndableCallback.h"
#include "Platform/Linux/Watching/EventDevices.h"
#include "Platform/Linux/Watching/ServiceSubscription.h"
#include "Platform/Linux/Watching/UdevMonitor.h"
#include "Platform/Linux/Watching/X11CapsLockKey.h"

namespace zephlin {

namespace {

bool matchesCapsLock(const HidInputMatching& matching) {
  return matching.deviceUsagePage == 1 && matching.deviceUsage == 6 && matching.usagePage == 7 &&
         matching.usage == 57;
}

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

std::unique_ptr<Observation> LinuxHidDevices::observeAppeared(const std::string& serviceClass,
                                                              std::function<void()> callback) {
  if (serviceClass != "IOHIDDevice") {
    return nullptr;
  }
  return std::make_unique<AppearedObservation>(socketPath_, std::move(callback));
}

std::variant<std::unique_ptr<Observation>, std::int32_t> LinuxHidDevices::openInput(
    const HidInputMatching& matching, std::function<void(std::int64_t value)> callback) {
  if (!matchesCapsLock(matching)) {
    return ENOTSUP;
  }
  auto deliver = [isHeldBack = holdsInputBack_, callback = std::move(callback)](int value) {
    if (!isHeldBack()) {
      callback(value);
    }
  };
  return desktop_ == WindowSystem::X11
             ? openX11CapsLockKey(std::move(deliver))
             : openEventDevices({EV_KEY, KEY_CAPSLOCK}, std::move(deliver));
}

}  // namespace zephlin
