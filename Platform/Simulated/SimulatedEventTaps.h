#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "Platform/Keyboard.h"
#include "Platform/Simulated/ObserverList.h"
#include "Platform/Simulated/SimulatedTracking.h"

namespace zephlin {

class SimulatedEventTaps final : public EventTaps {
 public:
  explicit SimulatedEventTaps(const SimulatedTracking& tracking) : tracking_(tracking) {}

  std::unique_ptr<Observation> listenToFlagsChanged(
      std::function<void(ModifierFlags flags)> callback) override;
  ModifierFlags currentModifierFlags() override { return flags_; }

  /// From now on no tap is given, or is again.
  void setAllowed(bool allowed) { allowed_ = allowed; }

  /// Makes these the current flags and delivers the event, unless input is held back.
  void setFlags(ModifierFlags flags);

  [[nodiscard]] std::size_t openTaps() const { return taps_.count(); }

 private:
  const SimulatedTracking& tracking_;
  bool allowed_ = true;
  ModifierFlags flags_ = 0;
  ObserverList<ModifierFlags> taps_;
};

}  // namespace zephlin
