#include "KeyboardService/Service/Evdev/WatchedKeyboard.h"

#include <sys/epoll.h>

#include <utility>

namespace zephlin {
namespace {

constexpr InputEvent capsLockRelease{EV_KEY, KEY_CAPSLOCK, KeyReleased};

}  // namespace

WatchedKeyboard::WatchedKeyboard(EventLoop& loop, const KeyboardNode& node, Report report)
    : NodeHandling(loop, node, std::move(report)),
      path_(node.path),
      repeatsInHardware_(node.repeatsInHardware),
      repeatDeadline_(loop.timer([this] { attempt([this] { blockRepeats(); }); })) {
  tryAgain();
}

WatchedKeyboard::~WatchedKeyboard() {
  close();
}

void WatchedKeyboard::onOpen() {
  node().letIn(EV_KEY, {KEY_CAPSLOCK});
  node().letIn(EV_LED, {LED_CAPSL});
  node().letIn(EV_MSC, {MSC_SCAN});
  node().letIn(EV_SYN, {EV_KEY, EV_LED});
  areScanCodesLetIn_ = false;
  if (repeatsInHardware_) {
    repeat_.emplace(node().scanCodes(KEY_CAPSLOCK));
    blocker_.emplace(path_, *repeat_, [this] { return readAll(); });
  }
  events_ = loop().watch(node().descriptor(), EPOLLIN,
                         [this](std::uint32_t) { attempt([this] { handleAll(); }); });
  events_.putFirst();
}

void WatchedKeyboard::confirm() {
  isHeard_ = false;
  node().writeProbe();
  handleAll();
  if (isHeard_) {
    // While it was held by another program, perhaps unnoticed, LED events went there.
    watch_.setLed(node().leds()[LED_CAPSL]);
    become({KeyboardState::Kind::InForce, "watched"});
  } else {
    becomeHeld();
  }
}

void WatchedKeyboard::onClose() noexcept {
  repeatDeadline_.disable();
  events_ = EventSource();
  blocker_.reset();
  repeat_.reset();
}

void WatchedKeyboard::handleAll() {
  readAll();
  act();
}

std::optional<std::chrono::microseconds> WatchedKeyboard::readAll() {
  bool hasOverflowed = false;
  std::optional<std::chrono::microseconds> firstScanCode;
  node().readAll([&](const InputEvent& event, std::chrono::microseconds time) {
    isHeard_ = isHeard_ || EventNode::isProbe(event);
    hasOverflowed = hasOverflowed || (event.type == EV_SYN && event.code == SYN_DROPPED);
    watch_.take(event);
    if (repeat_) {
      repeat_->take(event);
    }
    if (isCapsLock(event)) {
      pressed_ = time;
    } else if (isScanCode(event) && !firstScanCode) {
      firstScanCode = time;
    }
  });
  if (hasOverflowed) {
    watch_.setLed(node().leds()[LED_CAPSL]);
  }
  return firstScanCode;
}

void WatchedKeyboard::act() {
  if (watch_.takeRelease()) {
    node().write({capsLockRelease, endOfFrame});
    if (repeat_) {
      repeat_->follow(pressed_, monotonicTime());
    }
  }
  if (repeat_) {
    followRepeats();
  }
}

void WatchedKeyboard::followRepeats() {
  if (areScanCodesLetIn_ != repeat_->isFollowing()) {
    areScanCodesLetIn_ = repeat_->isFollowing();
    if (areScanCodesLetIn_) {
      node().letIn(EV_SYN, {EV_KEY, EV_LED, EV_MSC});
    } else {
      node().letIn(EV_SYN, {EV_KEY, EV_LED});
    }
  }
  if (const auto deadline = repeat_->deadline()) {
    repeatDeadline_.setTime(*deadline);
  } else {
    repeatDeadline_.disable();
  }
}

void WatchedKeyboard::blockRepeats() {
  handleAll();
  if (repeat_->deadline() && !blocker_->block()) {
    repeat_->blocked(false);
    becomeHeld();
  }
  act();
}

}  // namespace zephlin
