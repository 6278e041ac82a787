#include "KeyboardService/Service/Evdev/EvdevKeyboardBus.h"

#include <system_error>
#include <utility>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Properties.h"

namespace zephlin {
namespace {

/// Unique among the keyboards that are present, as numbers of devices are.
BusHandle handleOf(dev_t number) {
  return BusHandle{number};
}

}  // namespace

EvdevKeyboardBus::EvdevKeyboardBus(EventLoop& loop, std::chrono::milliseconds tapGap, Log log)
    : loop_(loop), tapGap_(tapGap), log_(std::move(log)), nodes_(loop) {}

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
    entry.grabbed.reset();
  } else if (entry.grabbed) {
    entry.grabbed->setRule({*delay, tapGap_});
  } else {
    grab(handle, entry, {*delay, tapGap_});
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

void EvdevKeyboardBus::grab(BusHandle handle, Entry& entry, CapsLockRule rule) {
  const auto ended = [this, handle](GrabbedKeyboard::End end) {
    if (end == GrabbedKeyboard::End::EmergencyChord) {
      releaseAll();
    } else {
      entries_.at(handle).grabbed.reset();  // The node is removed when udev says so.
    }
  };
  try {
    entry.grabbed = std::make_unique<GrabbedKeyboard>(loop_, entry.node.path, rule, log_, ended);
  } catch (const std::system_error& error) {
    if (error.code() != std::errc::no_such_device) {
      throw RequestError("cannot watch " + entry.node.path + errnoText(error.code().value()));
    }
  }
}

void EvdevKeyboardBus::releaseAll() {
  log_(
      "Backspace, Enter and Escape were held together: all keyboards are released and their "
      "properties cleared");
  for (auto& [handle, entry] : entries_) {
    entry.grabbed.reset();
    observer_->propertiesDropped(*this, handle);
  }
}

}  // namespace zephlin
