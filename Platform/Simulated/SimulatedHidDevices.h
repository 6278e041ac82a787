#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Platform/Dispatch.h"
#include "Platform/HidDevices.h"
#include "Platform/Simulated/ObserverList.h"
#include "Platform/Simulated/SimulatedTracking.h"

namespace zephlin {

class SimulatedHidDevices final : public HidDevices {
 public:
  SimulatedHidDevices(MainQueue& mainQueue, const SimulatedTracking& tracking)
      : mainQueue_(mainQueue), tracking_(tracking) {}

  std::unique_ptr<Observation> observeAppeared(const std::string& serviceClass,
                                               std::function<void()> callback) override;
  std::variant<std::unique_ptr<Observation>, std::int32_t> openInput(
      const HidInputMatching& matching, std::function<void(std::int64_t value)> callback) override;

  /// From now on devices cannot be observed, or can again.
  void setObservable(bool observable) { observable_ = observable; }
  /// From now on inputs open, or fail with this code.
  void failOpening(std::optional<std::int32_t> code) { openingFailure_ = code; }

  /// Tells the observers of the class "IOHIDDevice", through the main queue.
  void announceAppeared();
  /// Delivers a value of the Caps Lock key to the inputs that match it, unless input is held back.
  void deliverCapsLockValue(std::int64_t value);

  [[nodiscard]] std::size_t appearedObservers() const { return appeared_.count(); }
  [[nodiscard]] std::size_t openInputs() const { return inputs_.count(); }
  [[nodiscard]] std::vector<HidInputMatching> openMatchings() const { return inputs_.records(); }

 private:
  MainQueue& mainQueue_;
  const SimulatedTracking& tracking_;
  bool observable_ = true;
  std::optional<std::int32_t> openingFailure_;
  ObserverList<std::string> appeared_;
  ObserverList<HidInputMatching, std::int64_t> inputs_;
};

}  // namespace zephlin
