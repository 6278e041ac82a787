#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "KeyboardService/Service/KeyboardBus.h"

namespace zephlin {

/// A bus whose keyboards a test plugs, and which refuses when it is told to.
class FakeKeyboardBus final : public KeyboardBus {
 public:
  void start(KeyboardBusObserver& observer) override { observer_ = &observer; }

  void applyProperties(BusHandle handle, const PropertySet& properties) override {
    if (refusing.contains(handle) || (refusesToRestore && carried.contains(handle))) {
      throw RequestError("the cable is loose");
    }
    carried[handle] = properties;
    applied.push_back(handle);
  }

  void plug(BusHandle handle, const std::string& product = "Fake") {
    KeyboardDescription description;
    description.product = product;
    description.transport = "USB";
    observer_->keyboardAppeared(*this, handle, description);
  }

  void pull(BusHandle handle) { observer_->keyboardDisappeared(*this, handle); }

  void dropProperties(BusHandle handle) {
    carried.erase(handle);
    observer_->propertiesDropped(*this, handle);
  }

  std::set<BusHandle> refusing;
  bool refusesToRestore = false;  ///< Refuses keyboards that it has changed before.
  std::map<BusHandle, PropertySet> carried;
  std::vector<BusHandle> applied;

 private:
  KeyboardBusObserver* observer_ = nullptr;
};

}  // namespace zephlin
