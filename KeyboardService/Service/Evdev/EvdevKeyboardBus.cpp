#include "KeyboardService/Service/Evdev/EvdevKeyboardBus.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "KeyboardService/Protocol/Properties.h"

namespace zephlin {
namespace {

using Kind = KeyboardState::Kind;

constexpr std::chrono::seconds timeToNextThread{5};

/// Enough for a program that makes a keyboard of its own, or ends it, to take or to release the one
/// whose keys it passes on.
constexpr std::chrono::seconds timeToChangeHands{1};

/// Unique among the keyboards that are present, as numbers of devices are.
BusHandle handleOf(dev_t number) {
  return BusHandle{number};
}

/// What tools show a keyboard's thread as: "event3".
std::string threadName(const KeyboardNode& node) {
  return node.path.substr(node.path.rfind('/') + 1);
}

}  // namespace

EvdevKeyboardBus::EvdevKeyboardBus(EventLoop& loop, Devices devices,
                                   std::chrono::milliseconds tapGap, Log log)
    : loop_(loop),
      devices_(std::move(devices)),
      tapGap_(tapGap),
      log_(std::move(log)),
      nextTry_(loop.timer([this] { tryAgain(); })),
      nextLook_(loop.timer([this] { lookAgain(); })) {}

EvdevKeyboardBus::~EvdevKeyboardBus() {
  // All at the same time, as each may take a while.
  for (auto& [handle, entry] : entries_) {
    if (entry.thread) {
      entry.thread->end([] {});
    }
  }
}

void EvdevKeyboardBus::start(KeyboardBusObserver& observer) {
  observer_ = &observer;
  devices_.start([this](const KeyboardNode& node) { appeared(node); },
                 [this](dev_t number) { disappeared(number); });
}

void EvdevKeyboardBus::requireCarriable(const PropertySet& properties) const {
  requireCapsLockDelayInRange(properties);
}

void EvdevKeyboardBus::applyProperties(BusHandle handle, const PropertySet& properties) {
  if (const auto found = entries_.find(handle); found != entries_.end()) {
    found->second.delay = capsLockDelay(properties);
    follow(found->second);
  }
}

void EvdevKeyboardBus::check(BusHandle handle) {
  const auto found = entries_.find(handle);
  if (found == entries_.end()) {
    return;
  }
  Entry& entry = found->second;
  ++entry.openChecks;
  if (!entry.thread) {
    follow(entry);
  }
  if (entry.thread && !entry.isEnding) {
    entry.thread->check();
  } else {
    answer(entry, entry.openChecks);
  }
}

void EvdevKeyboardBus::appeared(const KeyboardNode& node) {
  const BusHandle handle = handleOf(node.number);
  Entry& entry = entries_[handle];
  entry.handle = handle;
  entry.node = node;
  observer_->keyboardAppeared(*this, handle, node.description, node.systemPath);
  nextLook_.setDelay(timeToChangeHands);
}

void EvdevKeyboardBus::disappeared(dev_t number) {
  const BusHandle handle = handleOf(number);
  auto gone = entries_.extract(handle);
  if (!gone.empty() && gone.mapped().thread) {
    const auto leaving = leaving_.insert(leaving_.end(), std::move(gone.mapped().thread));
    (*leaving)->end([this, leaving] { leaving_.erase(leaving); });
  }
  observer_->keyboardDisappeared(*this, handle);
  nextLook_.setDelay(timeToChangeHands);
}

/// Makes what is done to the keyboard follow its delay.
void EvdevKeyboardBus::follow(Entry& entry) {
  const KeyboardWay way = wayFor(entry.node, entry.delay);
  if (entry.thread && (entry.isEnding || entry.wayOfThread != way)) {
    endThread(entry);
  } else if (way == KeyboardWay::LeftAlone) {
    report(entry, {});
  } else if (way == KeyboardWay::Impossible) {
    report(entry, {Kind::NotInForce, whyImpossible(entry.node)});
  } else if (entry.thread) {
    entry.thread->setRule({*entry.delay, tapGap_});
  } else {
    startThread(entry, way);
  }
}

void EvdevKeyboardBus::startThread(Entry& entry, KeyboardWay way) {
  const auto find = [this, handle = entry.handle]() -> Entry& { return entries_.at(handle); };
  KeyboardThread::Callbacks callbacks{
      [this, find](const KeyboardState& state) { report(find(), state); },
      [this, find] { answer(find(), 1); }, [this] { leaveAll(); },
      [this, find](const std::string& reason) { lose(find(), reason); }};
  try {
    entry.thread = std::make_unique<KeyboardThread>(
        loop_, threadName(entry.node),
        way == KeyboardWay::Watched ? devices_.watch(entry.node)
                                    : devices_.grab(entry.node, {*entry.delay, tapGap_}),
        std::move(callbacks));
    entry.wayOfThread = way;
    report(entry, {Kind::Settling, "not ready yet"});
  } catch (const std::system_error& error) {
    lose(entry, error.what());
  }
}

void EvdevKeyboardBus::endThread(Entry& entry) {
  entry.isEnding = true;
  report(entry, {Kind::Settling, "letting go"});
  answer(entry, entry.openChecks);
  entry.thread->end([this, handle = entry.handle] {
    Entry& ended = entries_.at(handle);
    ended.thread.reset();
    ended.isEnding = false;
    follow(ended);
  });
}

void EvdevKeyboardBus::lose(Entry& entry, const std::string& reason) {
  entry.thread.reset();
  report(entry, {Kind::NotInForce, reason});
  answer(entry, entry.openChecks);
  nextTry_.setDelay(timeToNextThread);
}

void EvdevKeyboardBus::tryAgain() {
  for (auto& [handle, entry] : entries_) {
    if (!entry.thread) {
      follow(entry);
    }
  }
}

/// Remappers have a keyboard of their own, so one that comes or goes may mean that others have been
/// taken or released. Watching their devices for use instead would make every key a little slower.
void EvdevKeyboardBus::lookAgain() {
  for (auto& [handle, entry] : entries_) {
    if (entry.thread && !entry.isEnding) {
      entry.thread->lookAgain();
    }
  }
}

void EvdevKeyboardBus::report(Entry& entry, const KeyboardState& state) {
  entry.state = state;
  observer_->stateChanged(*this, entry.handle, state);
}

/// The state may have been reported before, but an observer that has waited in vain may have
/// another idea of it.
void EvdevKeyboardBus::answer(Entry& entry, std::size_t checks) {
  report(entry, entry.state);
  entry.openChecks -= checks;
  for (; checks > 0; --checks) {
    observer_->checked(*this, entry.handle);
  }
}

void EvdevKeyboardBus::leaveAll() {
  log_(
      "Backspace, Enter and Escape were held together: all keyboards are left to the system and "
      "their properties cleared");
  for (auto& [handle, entry] : entries_) {
    entry.delay.reset();
    observer_->propertiesDropped(*this, handle);
    follow(entry);
  }
}

}  // namespace zephlin
