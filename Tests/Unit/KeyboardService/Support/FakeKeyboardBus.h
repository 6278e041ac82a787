#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "KeyboardService/Service/KeyboardBus.h"

namespace zephlin {

constexpr KeyboardState::Kind settling = KeyboardState::Kind::Settling;
constexpr KeyboardState::Kind inForce = KeyboardState::Kind::InForce;
constexpr KeyboardState::Kind notInForce = KeyboardState::Kind::NotInForce;

/// A bus whose keyboards a test plugs, and which refuses, answers and reports when told to. Unless
/// told otherwise it puts everything in force and answers at once.
class FakeKeyboardBus final : public KeyboardBus {
 public:
  void start(KeyboardBusObserver& observer) override { observer_ = &observer; }

  void requireCarriable(const PropertySet& /*properties*/) const override {
    if (refuses) {
      throw RequestError("the cable is loose");
    }
  }

  void applyProperties(BusHandle handle, const PropertySet& properties) override {
    if (!carried.contains(handle)) {
      throw std::logic_error("only keyboards that are there are changed");
    }
    carried[handle] = properties;
    applied.push_back(handle);
    report(handle, !capsLockDelay(properties) ? KeyboardState{}
                   : becomes                  ? *becomes
                                              : KeyboardState{inForce, "fake"});
  }

  void check(BusHandle handle) override {
    checked.push_back(handle);
    if (answers) {
      answer(handle);
    }
  }

  void answer(BusHandle handle) { observer_->checked(*this, handle); }

  void report(BusHandle handle, const KeyboardState& state) {
    observer_->stateChanged(*this, handle, state);
  }

  void plug(BusHandle handle, const std::string& product = "Fake", const std::string& seat = "",
            const std::string& identity = "") {
    carried[handle] = {};
    observer_->keyboardAppeared(*this, handle, {1, 6, 0, 0, product, "USB", seat}, identity);
  }

  void pull(BusHandle handle) {
    carried.erase(handle);
    observer_->keyboardDisappeared(*this, handle);
  }

  void dropProperties(BusHandle handle) {
    if (const auto found = carried.find(handle); found != carried.end()) {
      found->second.clear();
    }
    observer_->propertiesDropped(*this, handle);
    report(handle, {});
  }

  bool refuses = false;
  bool answers = true;
  std::optional<KeyboardState> becomes;      ///< With a delay of Caps Lock.
  std::map<BusHandle, PropertySet> carried;  ///< By the keyboards that are plugged in.
  std::vector<BusHandle> applied;
  std::vector<BusHandle> checked;

 private:
  KeyboardBusObserver* observer_ = nullptr;
};

}  // namespace zephlin
