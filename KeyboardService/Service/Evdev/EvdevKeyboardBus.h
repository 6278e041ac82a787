#pragma once

#include <chrono>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "KeyboardService/Service/Evdev/KeyboardNodes.h"
#include "KeyboardService/Service/Evdev/KeyboardThread.h"
#include "KeyboardService/Service/Evdev/KeyboardWay.h"
#include "KeyboardService/Service/EventLoop.h"
#include "KeyboardService/Service/KeyboardBus.h"
#include "KeyboardService/Service/Log.h"

namespace zephlin {

/// The machine's keyboards. One is not even opened unless its `CapsLockDelayOverride` asks for
/// something else than the system's own behaviour. Then it gets a thread and is watched or grabbed.
class EvdevKeyboardBus final : public KeyboardBus {
 public:
  using Appeared = std::function<void(const KeyboardNode& node)>;
  using Disappeared = std::function<void(dev_t number)>;

  /// Where keyboards come from, and what is done to them in their threads.
  struct Devices {
    std::function<void(Appeared appeared, Disappeared disappeared)> start;
    std::function<KeyboardThread::Make(const KeyboardNode& node)> watch;
    std::function<KeyboardThread::Make(const KeyboardNode& node, CapsLockRule rule)> grab;
  };

  /// `tapGap` is how long Caps Lock of a grabbed keyboard stays down when its release is sent
  /// early. The loop outlives the bus.
  EvdevKeyboardBus(EventLoop& loop, Devices devices, std::chrono::milliseconds tapGap, Log log);

  EvdevKeyboardBus(const EvdevKeyboardBus&) = delete;
  EvdevKeyboardBus& operator=(const EvdevKeyboardBus&) = delete;

  /// Waits until all keyboards are left to the system.
  ~EvdevKeyboardBus() override;

  void start(KeyboardBusObserver& observer) override;
  void requireCarriable(const PropertySet& properties) const override;
  void applyProperties(BusHandle handle, const PropertySet& properties) override;
  void check(BusHandle handle) override;

 private:
  struct Entry {
    BusHandle handle{};
    KeyboardNode node;
    std::optional<std::chrono::milliseconds> delay;
    std::unique_ptr<KeyboardThread> thread;
    KeyboardWay wayOfThread = KeyboardWay::LeftAlone;
    bool isEnding = false;
    std::size_t openChecks = 0;
    KeyboardState state;
  };

  void appeared(const KeyboardNode& node);
  void disappeared(dev_t number);
  void follow(Entry& entry);
  void startThread(Entry& entry, KeyboardWay way);
  void endThread(Entry& entry);
  void lose(Entry& entry, const std::string& reason);
  void tryAgain();
  void report(Entry& entry, const KeyboardState& state);
  void answer(Entry& entry, std::size_t checks);
  void leaveAll();
  void lookAgain();

  EventLoop& loop_;
  Devices devices_;
  std::chrono::milliseconds tapGap_;
  Log log_;
  KeyboardBusObserver* observer_ = nullptr;
  std::map<BusHandle, Entry> entries_;
  std::list<std::unique_ptr<KeyboardThread>> leaving_;  ///< Their keyboards have gone.
  EventSource nextTry_;
  EventSource nextLook_;
};

}  // namespace zephlin
