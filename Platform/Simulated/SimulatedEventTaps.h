#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "Platform/EventTap.h"
#include "Platform/Simulated/ObserverList.h"
#include "Platform/Simulated/SimulatedTracking.h"

namespace zephlin {

class SimulatedEventTaps final : public EventTaps {
 public:
  explicit SimulatedEventTaps(const SimulatedTracking& tracking) : tracking_(tracking) {}

  std::unique_ptr<Observation> listen(
      std::uint64_t mask,
      std::function<void(EventType type, ModifierFlags flags)> callback) override;
  ModifierFlags currentModifierFlags() override { return flags_; }

  /// From now on no tap is given, or is again.
  void setAllowed(bool allowed) { allowed_ = allowed; }

  /// Makes these the current flags and delivers the event, unless input is held back.
  void setFlags(ModifierFlags flags);
  /// Tells every tap that it was disabled.
  void announceDisabled();

  [[nodiscard]] std::size_t openTaps() const { return taps_.count(); }
  [[nodiscard]] std::vector<std::uint64_t> openMasks() const { return taps_.records(); }

 private:
  const SimulatedTracking& tracking_;
  bool allowed_ = true;
  ModifierFlags flags_ = 0;
  ObserverList<std::uint64_t, EventType, ModifierFlags> taps_;
};

}  // namespace zephlin
