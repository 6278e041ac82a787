#include "KeyboardService/Service/Evdev/GrabbedKeyboard.h"

#include <sys/epoll.h>

#include <utility>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using Kind = KeyboardState::Kind;

/// Several times what a desktop needs to open a new keyboard: what is typed before that is lost.
constexpr std::chrono::milliseconds timeToFindUinputKeyboard = 500ms;

}  // namespace

bool EmergencyChord::completes(const InputEvent& event) {
  if (event.type != EV_KEY || event.value == KeyRepeated) {
    return false;
  }
  const bool isDown = event.value == KeyPressed;
  switch (event.code) {
    case KEY_BACKSPACE:
      backspace_ = isDown;
      break;
    case KEY_ENTER:
      enter_ = isDown;
      break;
    case KEY_ESC:
      escape_ = isDown;
      break;
    default:
      return false;
  }
  return backspace_ && enter_ && escape_;
}

GrabbedKeyboard::GrabbedKeyboard(EventLoop& loop, const KeyboardNode& node, CapsLockRule rule,
                                 Report report, std::function<void()> emergencyChord)
    : NodeHandling(loop, node, std::move(report)),
      emergencyChord_(std::move(emergencyChord)),
      rewriter_(rule),
      settled_(loop.timer([this] { attempt([this] { grab(); }); })),
      deadline_(loop.timer([this] { attempt([this] { onDeadline(); }); })) {
  deadline_.putFirst();
  tryAgain();
}

GrabbedKeyboard::~GrabbedKeyboard() {
  close();
}

void GrabbedKeyboard::onOpen() {
  // Scan codes would double what is read and written for a key. LEDs, sounds and the repeat rate
  // are not typed: they come back from the device to which they were sent.
  node().letIn(EV_SYN, {EV_KEY, EV_REL, EV_ABS, EV_MSC, EV_SW});
  node().letIn(EV_MSC, {MSC_SERIAL, MSC_PULSELED, MSC_GESTURE, MSC_RAW, MSC_TIMESTAMP});
  // By the edge: readAll leaves nothing, so the kernel need not look again.
  watchKeyboard_ = loop().watch(node().descriptor(), EPOLLIN | EPOLLET,
                                [this](std::uint32_t) { attempt([this] { onKeyboard(); }); });
  watchKeyboard_.putFirst();
  watchKeyboard_.disable();
}

void GrabbedKeyboard::confirm() {
  if (isGrabbed_) {
    node().requireUsable();
    return;
  }
  if (!node().hearsProbe()) {
    endClone();
    becomeHeld();
  } else if (!clone_) {
    makeClone();
  }
}

void GrabbedKeyboard::onClose() noexcept {
  endClone();
  watchKeyboard_ = EventSource();
}

void GrabbedKeyboard::makeClone() {
  clone_.emplace(node().descriptor());
  watchLeds_ = loop().watch(clone_->descriptor(), EPOLLIN,
                            [this](std::uint32_t) { attempt([this] { onLedEvents(); }); });
  watchLeds_.putFirst();
  settled_.setDelay(timeToFindUinputKeyboard);
  become({Kind::Settling, "waiting for programs to find its clone"});
}

void GrabbedKeyboard::endClone() noexcept {
  settled_.disable();
  deadline_.disable();
  awaited_.reset();
  watchLeds_ = EventSource();
  if (clone_) {
    try {
      clone_->write(rewriter_.releaseAll());
    } catch (const RequestError&) {
      // The kernel releases the keys of a clone that goes.
    }
    clone_.reset();
  }
  isGrabbed_ = false;
}

/// Grabs the keyboard unless a key is held: programs that have seen the press would miss the
/// release.
void GrabbedKeyboard::grab() {
  const auto isAnyKeyHeld = [this] { return node().heldKeys().any(); };
  if (!isAnyKeyHeld()) {
    if (!node().grab()) {
      endClone();
      becomeHeld();
      return;
    }
    node().readAll(
        [](const InputEvent&, std::chrono::microseconds) {});  // Programs have seen these.
    if (!isAnyKeyHeld()) {
      startRewriting();
      return;
    }
    node().ungrab();
  }
  watchKeyboard_.enable();
  become({Kind::Settling, "a key is held down"});
}

void GrabbedKeyboard::startRewriting() {
  isGrabbed_ = true;
  overflow_ = QueueOverflow();
  chord_ = EmergencyChord();
  watchKeyboard_.enable();
  // The kernel reports LEDs only when they change, so the clone starts with their present state.
  const auto lit = node().leds();
  rewriter_.setLed(lit[LED_CAPSL]);
  std::vector<InputEvent> leds;
  for (std::uint16_t code = 0; code < LED_CNT; ++code) {
    if (lit[code]) {
      leds.push_back({EV_LED, code, 1});
    }
  }
  leds.push_back(endOfFrame);
  clone_->write(leds);
  become({Kind::InForce, "grabbed"});
}

void GrabbedKeyboard::onKeyboard() {
  if (isGrabbed_) {
    rewriteTyped();
  } else {
    node().readAll([](const InputEvent&, std::chrono::microseconds) {});
    watchKeyboard_.disable();
    grab();
  }
}

void GrabbedKeyboard::onDeadline() {
  awaited_.reset();
  const auto now = monotonicTime();
  rewriteTyped();  // What was typed before the deadline may not have been read yet.
  onLedEvents();
  clone_->write(rewriter_.expire(now));
  waitForDeadline();
}

void GrabbedKeyboard::onLedEvents() {
  for (const InputEvent& led : clone_->takeLedEvents()) {
    if (led.code == LED_CAPSL) {
      rewriter_.setLed(led.value != 0);
    }
    node().write({led, endOfFrame});
  }
}

void GrabbedKeyboard::rewriteTyped() {
  node().readAll([&](const InputEvent& event, std::chrono::microseconds time) {
    if (overflow_.counts(event)) {
      rewrite(event, time);
    } else if (overflow_.isOver()) {
      for (const InputEvent& each : overflow_.differences(node().heldKeys())) {
        rewrite(each, time);
      }
    }
  });
  waitForDeadline();
}

void GrabbedKeyboard::rewrite(const InputEvent& event, std::chrono::microseconds time) {
  if (isCapsLock(event)) {
    onLedEvents();  // It was pressed with the LED as it is now.
  }
  // For other keys it is enough to know when they were typed, unless some of them wait.
  const bool needsClock = isCapsLock(event) || rewriter_.deadline();
  clone_->write(rewriter_.take(event, time, needsClock ? monotonicTime() : time));
  if (chord_.completes(event)) {
    emergencyChord_();
  }
}

void GrabbedKeyboard::waitForDeadline() {
  if (rewriter_.deadline() == awaited_) {
    return;
  }
  awaited_ = rewriter_.deadline();
  if (awaited_) {
    deadline_.setTime(*awaited_);
  } else {
    deadline_.disable();
  }
}

}  // namespace zephlin
