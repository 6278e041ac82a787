#include "Platform/Simulated/SimulatedHidDevices.h"

#include <utility>

namespace zephlin {

std::unique_ptr<Observation> SimulatedHidDevices::observeDeviceAppeared(
    std::function<void()> callback) {
  if (!observable_) {
    return nullptr;
  }
  return appeared_.add(std::move(callback));
}

std::variant<std::unique_ptr<Observation>, std::int32_t> SimulatedHidDevices::openCapsLockKey(
    std::function<void(bool isDown)> callback) {
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
    inputs_.notification(isDown)();
  }
}

}  // namespace zephlin
