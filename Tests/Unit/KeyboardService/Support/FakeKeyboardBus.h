#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "KeyboardService/Service/KeyboardBus.h"

namespace zephlin {

/// A bus whose keyboards a test plugs, and which refuses when told to.
class FakeKeyboardBus final : public KeyboardBus {
 public:
  void start(KeyboardBusObserver& observer) override { observer_ = &observer; }

  void applyProperties(BusHandle handle, const PropertySet& properties) override {
    if (!carried.contains(handle)) {
      throw std::logic_error("only keyboards that are there are changed");
    }
    const bool wasChanged = std::count(applied.begin(), applied.end(), handle) > 0;
    if (refusing.contains(handle) || (refusesToRestore && wasChanged)) {
      throw RequestError("the cable is loose");
    }
    carried[handle] = properties;
    applied.push_back(handle);
  }

  void plug(BusHandle handle, const std::string& product = "Fake") {
    carried[handle] = {};
    observer_->keyboardAppeared(*this, handle, {1, 6, 0, 0, product, "USB", ""});
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
  }

  std::set<BusHandle> refusing;
  bool refusesToRestore = false;             ///< Refuses keyboards that it has changed before.
  std::map<BusHandle, PropertySet> carried;  ///< By the keyboards that are plugged in.
  std::vector<BusHandle> applied;

 private:
  KeyboardBusObserver* observer_ = nullptr;
};

}  // namespace zephlin
