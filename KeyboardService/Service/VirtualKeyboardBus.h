#pragma once

#include <cstddef>
#include <set>
#include <string>

#include "KeyboardService/Service/KeyboardBus.h"

namespace zephlin {

/// Keyboards that exist in memory only, for containers, tests and machines without a keyboard.
/// They carry every property.
class VirtualKeyboardBus final : public KeyboardBus {
 public:
  static constexpr std::size_t maximumKeyboards = 256;

  /// `start` plugs in `initialKeyboards`, at most `maximumKeyboards`.
  explicit VirtualKeyboardBus(std::size_t initialKeyboards) : initialKeyboards_(initialKeyboards) {}

  void start(KeyboardBusObserver& observer) override {
    observer_ = &observer;
    for (std::size_t plugged = 0; plugged < initialKeyboards_; ++plugged) {
      plug();
    }
  }

  void requireCarriable(const PropertySet& /*properties*/) const override {}

  void applyProperties(BusHandle handle, const PropertySet& properties) override {
    const KeyboardState inForce{KeyboardState::Kind::InForce, "virtual"};
    observer_->stateChanged(*this, handle, capsLockDelay(properties) ? inForce : KeyboardState{});
  }

  void check(BusHandle handle) override { observer_->checked(*this, handle); }

  /// Plugs in one more, which is reported within the call. Needs a started bus. Throws RequestError
  /// at the limit.
  BusHandle plug() {
    if (present_.size() >= maximumKeyboards) {
      throw RequestError("virtual keyboard limit reached (" + std::to_string(maximumKeyboards) +
                         "); pull one first");
    }
    const std::uint64_t number = ++lastNumber_;
    const BusHandle handle{number};
    present_.insert(handle);
    KeyboardDescription description;
    description.productID = static_cast<std::int64_t>(number);
    description.product = "Virtual Keyboard " + std::to_string(number);
    description.transport = "Virtual";
    observer_->keyboardAppeared(*this, handle, description, "");
    return handle;
  }

  /// Pulls out a keyboard that is present, which is reported within the call.
  void pull(BusHandle handle) {
    if (present_.erase(handle) > 0) {
      observer_->keyboardDisappeared(*this, handle);
    }
  }

 private:
  std::size_t initialKeyboards_;
  KeyboardBusObserver* observer_ = nullptr;
  std::uint64_t lastNumber_ = 0;
  std::set<BusHandle> present_;
};

}  // namespace zephlin
