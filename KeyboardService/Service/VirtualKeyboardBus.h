#pragma once

#include <cstddef>
#include <set>

#include "KeyboardService/Service/KeyboardBus.h"

namespace zephlin {

/// Keyboards that exist in memory only, for containers, tests and machines without a keyboard.
/// They carry every property.
class VirtualKeyboardBus final : public KeyboardBus {
 public:
  static constexpr std::size_t maximumKeyboards = 256;

  /// `initialKeyboards` are plugged in by `start`; at most `maximumKeyboards`.
  explicit VirtualKeyboardBus(std::size_t initialKeyboards) : initialKeyboards_(initialKeyboards) {}

  void start(KeyboardBusObserver& observer) override;
  void applyProperties(BusHandle /*handle*/, const PropertySet& /*properties*/) override {}

  /// Plugs in one more, which the observer hears of within the call. Needs a started bus. Throws
  /// RequestError if there are as many as can be.
  BusHandle plug();

  /// Pulls out a keyboard that is present; the observer hears of it within the call.
  void pull(BusHandle handle);

 private:
  std::size_t initialKeyboards_;
  KeyboardBusObserver* observer_ = nullptr;
  std::uint64_t lastNumber_ = 0;
  std::set<BusHandle> present_;
};

}  // namespace zephlin
