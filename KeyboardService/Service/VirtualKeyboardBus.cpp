#include "KeyboardService/Service/VirtualKeyboardBus.h"

namespace zephlin {
namespace {

KeyboardDescription description(std::uint64_t number) {
  KeyboardDescription result;
  result.productID = static_cast<std::int64_t>(number);
  result.product = "Virtual Keyboard " + std::to_string(number);
  result.transport = "Virtual";
  return result;
}

}  // namespace

void VirtualKeyboardBus::start(KeyboardBusObserver& observer) {
  observer_ = &observer;
  for (std::size_t plugged = 0; plugged < initialKeyboards_; ++plugged) {
    plug();
  }
}

BusHandle VirtualKeyboardBus::plug() {
  if (present_.size() >= maximumKeyboards) {
    throw RequestError("there are " + std::to_string(maximumKeyboards) +
                       " virtual keyboards, which is the most; pull one first");
  }
  const std::uint64_t number = ++lastNumber_;
  const BusHandle handle{number};
  present_.insert(handle);
  observer_->keyboardAppeared(*this, handle, description(number));
  return handle;
}

void VirtualKeyboardBus::pull(BusHandle handle) {
  if (present_.erase(handle) > 0) {
    observer_->keyboardDisappeared(*this, handle);
  }
}

}  // namespace zephlin
