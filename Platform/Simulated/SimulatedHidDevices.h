#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <variant>

#include "Platform/Dispatch.h"
#include "Platform/Keyboard.h"
#include "Platform/Simulated/ObserverList.h"
#include "Platform/Simulated/SimulatedTracking.h"

namespace zephlin {

class SimulatedHidDevices final : public HidDevices {
 public:
  SimulatedHidDevices(std::shared_ptr<MainQueue> mainQueue, const SimulatedTracking& tracking)
      : mainQueue_(std::move(mainQueue)), tracking_(tracking) {}

  std::unique_ptr<Observation> observeDeviceAppeared(std::function<void()> callback) override;
  std::variant<std::unique_ptr<Observation>, std::int32_t> openCapsLockKey(
      std::function<void(bool isDown)> callback) override;

  /// From now on devices cannot be observed, or can again.
  void setObservable(bool observable) { observable_ = observable; }
  /// From now on inputs open, or fail with this code.
  void failOpening(std::optional<std::int32_t> code) { openingFailure_ = code; }

  /// Calls the observers, through the main queue.
  void announceAppeared();
  /// Tells whoever has opened the Caps Lock key, unless input is held back.
  void moveCapsLockKey(bool isDown);

  [[nodiscard]] std::size_t appearedObservers() const { return appeared_.count(); }
  [[nodiscard]] std::size_t openInputs() const { return inputs_.count(); }

 private:
  std::shared_ptr<MainQueue> mainQueue_;
  const SimulatedTracking& tracking_;
  bool observable_ = true;
  std::optional<std::int32_t> openingFailure_;
  ObserverList<> appeared_;
  ObserverList<bool> inputs_;
};

}  // namespace zephlin
