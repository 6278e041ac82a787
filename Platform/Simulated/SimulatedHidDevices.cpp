#include "Platform/Simulated/SimulatedHidDevices.h"

#include <utility>

namespace zephlin {

namespace {

bool matchesCapsLock(const HidInputMatching& matching) {
  return matching.deviceUsagePage == 1 && matching.deviceUsage == 6 && matching.usagePage == 7 &&
         matching.usage == 57;
}

}  // namespace

std::unique_ptr<Observation> SimulatedHidDevices::observeAppeared(const std::string& serviceClass,
                                                                  std::function<void()> callback) {
  if (!observable_) {
    return nullptr;
  }
  return appeared_.add(serviceClass, std::move(callback));
}

std::variant<std::unique_ptr<Observation>, std::int32_t> SimulatedHidDevices::openInput(
    const HidInputMatching& matching, std::function<void(std::int64_t value)> callback) {
  if (openingFailure_) {
    return *openingFailure_;
  }
  return inputs_.add(matching, std::move(callback));
}

void SimulatedHidDevices::announceAppeared() {
  mainQueue_.post(appeared_.notificationIf(
      [](const std::string& observed) { return observed == "IOHIDDevice"; }));
}

void SimulatedHidDevices::deliverCapsLockValue(std::int64_t value) {
  if (!tracking_.holdsInputBack()) {
    inputs_.notifyIf(matchesCapsLock, value);
  }
}

}  // namespace zephlin
