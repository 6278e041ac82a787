#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>

#include "KeyboardService/Service/Evdev/KeyboardHandling.h"
#include "KeyboardService/Service/Evdev/KeyboardNodes.h"
#include "KeyboardService/Service/KeyboardBus.h"
#include "KeyboardService/Service/KeyboardRegistry.h"

namespace zephlin {

/// The machine's keyboards. A keyboard is not even opened unless its `CapsLockDelayOverride` asks
/// for something else than the system's own behaviour.
class EvdevKeyboardBus final : public KeyboardBus {
 public:
  /// `tapGap` is how long Caps Lock stays down when its release is sent early. The loop
  /// outlives the bus. Throws std::system_error if udev cannot be used.
  EvdevKeyboardBus(EventLoop& loop, std::chrono::milliseconds tapGap, Log log);

  void start(KeyboardBusObserver& observer) override;
  void applyProperties(BusHandle handle, const PropertySet& properties) override;

 private:
  struct Entry {
    KeyboardNode node;
    std::unique_ptr<KeyboardHandling> handling;
  };

  void appeared(const KeyboardNode& node);
  void disappeared(dev_t number);
  void handleKeyboard(Entry& entry, CapsLockRule rule);
  void releaseAll();

  EventLoop& loop_;
  std::chrono::milliseconds tapGap_;
  Log log_;
  KeyboardBusObserver* observer_ = nullptr;
  std::map<BusHandle, Entry> entries_;
  KeyboardNodes nodes_;
  EventSource released_;
};

}  // namespace zephlin
