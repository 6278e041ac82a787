#include "KeyboardService/Service/Evdev/WatchedKeyboard.h"

#include <sys/epoll.h>

#include <utility>

namespace zephlin {
namespace {

constexpr InputEvent capsLockRelease{EV_KEY, KEY_CAPSLOCK, KeyReleased};

}  // namespace

WatchedKeyboard::WatchedKeyboard(EventLoop& loop, const KeyboardNode& node, Log log, Report report)
    : NodeHandling(loop, node, std::move(log), std::move(report)) {
  tryAgain();
}

WatchedKeyboard::~WatchedKeyboard() {
  close();
}

void WatchedKeyboard::onOpen() {
  node().letIn(EV_SYN, {EV_KEY, EV_LED});
  node().letIn(EV_KEY, {KEY_CAPSLOCK});
  node().letIn(EV_LED, {LED_CAPSL});
  events_ = loop().watch(node().descriptor(), EPOLLIN,
                         [this](std::uint32_t) { attempt([this] { readAll(); }); });
  events_.putFirst();
}

void WatchedKeyboard::confirm() {
  isHeard_ = false;
  node().writeProbe();
  readAll();
  if (isHeard_) {
    // While it was held by another program, perhaps unnoticed, LED events went there.
    watch_.setLed(node().leds()[LED_CAPSL]);
    become({KeyboardState::Kind::InForce, "watched"});
  } else {
    becomeHeld();
  }
}

void WatchedKeyboard::onClose() noexcept {
  events_ = EventSource();
}

void WatchedKeyboard::readAll() {
  bool hasOverflowed = false;
  node().readAll([&](const InputEvent& event, std::chrono::microseconds /*time*/) {
    isHeard_ = true;
    hasOverflowed = hasOverflowed || (event.type == EV_SYN && event.code == SYN_DROPPED);
    watch_.take(event);
  });
  if (hasOverflowed) {
    watch_.setLed(node().leds()[LED_CAPSL]);
  }
  if (watch_.takeRelease()) {
    node().write({capsLockRelease, endOfFrame});
  }
}

}  // namespace zephlin
