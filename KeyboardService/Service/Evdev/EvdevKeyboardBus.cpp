#include "KeyboardService/Service/Evdev/EvdevKeyboardBus.h"

#include <utility>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Properties.h"
#include "KeyboardService/Service/Evdev/GrabbedKeyboard.h"
#include "KeyboardService/Service/Evdev/WatchedKeyboard.h"

namespace zephlin {
namespace {

/// Unique among the keyboards that are present, as numbers of devices are.
BusHandle handleOf(dev_t number) {
  return BusHandle{number};
}

}  // namespace

EvdevKeyboardBus::EvdevKeyboardBus(EventLoop& loop, std::chrono::milliseconds tapGap, Log log)
    : loop_(loop),
      tapGap_(tapGap),
      log_(std::move(log)),
      nodes_(loop),
      released_(loop.timer([this] { releaseAll(); })) {}

void EvdevKeyboardBus::start(KeyboardBusObserver& observer) {
  observer_ = &observer;
  try {
    UinputKeyboard::requireSupport();
  } catch (const RequestError& error) {
    log_(std::string("cannot change Caps Lock yet: ") + error.what());
  }
  nodes_.start([this](const KeyboardNode& node) { appeared(node); },
               [this](dev_t number) { disappeared(number); });
}

void EvdevKeyboardBus::applyProperties(BusHandle handle, const PropertySet& properties) {
  const auto found = entries_.find(handle);
  if (found == entries_.end()) {
    return;
  }
  Entry& entry = found->second;
  const auto delay = capsLockDelay(properties);
  if (!delay) {
    entry.handling.reset();
  } else {
    entry.handling.reset();
    handleKeyboard(entry, {*delay, tapGap_});
  }
}

void EvdevKeyboardBus::appeared(const KeyboardNode& node) {
  const BusHandle handle = handleOf(node.number);
  entries_.emplace(handle, Entry{node, nullptr});
  observer_->keyboardAppeared(*this, handle, node.description);
}

void EvdevKeyboardBus::disappeared(dev_t number) {
  entries_.erase(handleOf(number));
  observer_->keyboardDisappeared(*this, handleOf(number));
}

void EvdevKeyboardBus::handleKeyboard(Entry& entry, CapsLockRule rule) {
  const auto report = [](const KeyboardState&) {};
  const auto chord = [this] { released_.setDelay(std::chrono::microseconds(0)); };
  if (rule.hold == std::chrono::milliseconds::zero() && entry.node.hasCapsLockLed) {
    entry.handling = std::make_unique<WatchedKeyboard>(loop_, entry.node, log_, report);
  } else {
    entry.handling =
        std::make_unique<GrabbedKeyboard>(loop_, entry.node, rule, log_, report, chord);
  }
}

void EvdevKeyboardBus::releaseAll() {
  log_(
      "Backspace, Enter and Escape were held together: all keyboards are released and their "
      "properties cleared");
  for (auto& [handle, entry] : entries_) {
    entry.handling.reset();
    observer_->propertiesDropped(*this, handle);
  }
}

}  // namespace zephlin
