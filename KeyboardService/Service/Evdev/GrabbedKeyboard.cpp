#include "KeyboardService/Service/Evdev/GrabbedKeyboard.h"

#include <sys/epoll.h>

#include <algorithm>
#include <ctime>
#include <system_error>
#include <utility>

namespace zephlin {
namespace {

using namespace std::chrono_literals;

/// Several times what a desktop needs to open a new keyboard: what is typed before that is lost.
constexpr std::chrono::milliseconds timeToFindUinputKeyboard = 500ms;

constexpr std::chrono::seconds timeBetweenTries = 5s;

std::chrono::microseconds monotonicTime() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec));
}

/// LEDs, sounds and the repeat rate come back from the device to which they were sent.
bool isTyped(const InputEvent& event) {
  return event.type != EV_LED && event.type != EV_SND && event.type != EV_REP;
}

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

GrabbedKeyboard::GrabbedKeyboard(EventLoop& loop, const std::string& path, CapsLockRule rule,
                                 Log log, std::function<void(End)> ended)
    : path_(path),
      log_(std::move(log)),
      ended_(std::move(ended)),
      keyboard_(path),
      uinput_(keyboard_),
      rewriter_(rule),
      watchKeyboard_(
          loop.watch(keyboard_.descriptor(), EPOLLIN, [this](std::uint32_t) { onKeyboard(); })),
      watchLeds_(
          loop.watch(uinput_.descriptor(), EPOLLIN, [this](std::uint32_t) { onLedEvents(); })),
      nextTry_(loop.timer([this] { unlessGone([this] { tryToGrab(); }); })),
      deadline_(loop.timer([this] { onDeadline(); })) {
  for (EventSource* const each : {&watchKeyboard_, &watchLeds_, &deadline_}) {
    each->putFirst();
  }
  watchKeyboard_.disable();
  nextTry_.setDelay(timeToFindUinputKeyboard);
}

GrabbedKeyboard::~GrabbedKeyboard() {
  uinput_.write(rewriter_.releaseAll());
}

void GrabbedKeyboard::onKeyboard() {
  unlessGone([this] {
    if (isGrabbed_) {
      rewriteTyped();
    } else {
      while (keyboard_.takeEvent()) {
      }
      tryToGrab();
    }
  });
}

void GrabbedKeyboard::onDeadline() {
  unlessGone([this] {
    const auto now = monotonicTime();
    // What was typed before the deadline may not have been read yet.
    if (rewriteTyped()) {
      onLedEvents();
      uinput_.write(rewriter_.expire(now));
      waitForDeadline();
    }
  });
}

void GrabbedKeyboard::onLedEvents() {
  for (const InputEvent& led : uinput_.takeLedEvents()) {
    setLed(led);
  }
}

void GrabbedKeyboard::tryToGrab() {
  switch (keyboard_.grab()) {
    case PhysicalKeyboard::Grab::Done:
      startRewriting();
      break;
    case PhysicalKeyboard::Grab::KeyIsHeld:
      watchKeyboard_.enable();
      break;
    case PhysicalKeyboard::Grab::TakenByAnother:
      watchKeyboard_.disable();
      nextTry_.setDelay(timeBetweenTries);
      if (!std::exchange(hasReportedTrouble_, true)) {
        log_(path_ +
             " is held by another program (find it with fuser -v); will take over when it is "
             "released");
      }
  }
}

void GrabbedKeyboard::startRewriting() {
  isGrabbed_ = true;
  watchKeyboard_.enable();
  // The kernel reports LEDs only when they change, so the clone starts with their present state.
  std::vector<InputEvent> leds = keyboard_.leds();
  std::for_each(leds.begin(), leds.end(), [this](const auto& each) { setLed(each); });
  leds.push_back(endOfFrame);
  uinput_.write(leds);
}

/// Returns false after the emergency chord, which has destroyed this object.
bool GrabbedKeyboard::rewriteTyped() {
  const auto now = monotonicTime();
  while (const auto typed = keyboard_.takeEvent()) {
    const InputEvent& event = typed->event;
    if (!isTyped(event)) {
      continue;
    }
    if (isCapsLock(event)) {
      onLedEvents();  // It was pressed with the LED as it is now.
    }
    uinput_.write(rewriter_.take(event, typed->time, now));
    if (endsFrame(event)) {
      // Scan codes come back here as well, and the kernel keeps no more than sixteen events
      // (drivers/input/misc/uinput.c): an LED event would be lost among them.
      onLedEvents();
    }
    if (chord_.completes(event)) {
      end(End::EmergencyChord);
      return false;
    }
  }
  waitForDeadline();
  return true;
}

void GrabbedKeyboard::setLed(const InputEvent& led) {
  if (led.code == LED_CAPSL) {
    rewriter_.setLed(led.value != 0);
  }
  keyboard_.setLed(led);
}

void GrabbedKeyboard::waitForDeadline() {
  if (const auto deadline = rewriter_.deadline()) {
    deadline_.setTime(*deadline);
  } else {
    deadline_.disable();
  }
}

void GrabbedKeyboard::unlessGone(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::system_error&) {
    end(End::DeviceGone);
  }
}

void GrabbedKeyboard::end(End end) {
  const auto ended = ended_;  // A copy, as the call destroys this object.
  ended(end);
}

}  // namespace zephlin
