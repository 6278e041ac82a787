#include "HidUtil/Evdev/CapsLockRewriter.h"

#include <utility>

namespace zephlin {
namespace {

using Events = CapsLockRewriter::Events;

bool isKey(const InputEvent& event) {
  return event.type == EV_KEY && event.code < KEY_CNT;
}

}  // namespace

Events CapsLockRewriter::take(const InputEvent& event, Time time) {
  output_ = expire(time);
  unfinished_.push_back(event);
  if (endsFrame(event)) {
    if (event.code == SYN_DROPPED) {
      unfinished_.back() = endOfFrame;
    }
    waiting_.push_back({std::exchange(unfinished_, {}), time});
    takeWaiting(time);
  }
  return std::exchange(output_, {});
}

Events CapsLockRewriter::expire(Time now) {
  while (deadline_ && now >= *deadline_) {
    if (capsLock_ == CapsLock::Withheld) {
      countHeldPress();
    } else {
      closeTap();
      takeWaiting(now);
    }
  }
  return std::exchange(output_, {});
}

Events CapsLockRewriter::releaseAll() {
  unfinished_.clear();
  while (capsLock_ == CapsLock::Tapping) {
    closeTap();
    takeWaiting({});
  }
  deadline_.reset();
  capsLock_ = CapsLock::Up;
  Events releases;
  for (std::uint16_t code = 0; code < KEY_CNT; ++code) {
    if (down_.test(code)) {
      releases.push_back({EV_KEY, code, KeyReleased});
    }
  }
  emit(releases);
  return std::exchange(output_, {});
}

void CapsLockRewriter::takeWaiting(Time now) {
  while (capsLock_ != CapsLock::Tapping && !waiting_.empty()) {
    const Frame frame = std::move(waiting_.front());
    waiting_.pop_front();
    takeFrame(frame, now);
  }
}

void CapsLockRewriter::takeFrame(const Frame& frame, Time now) {
  Events passed;
  passed.reserve(frame.events.size());
  const auto end = frame.events.end() - 1;
  for (auto next = frame.events.begin(); next != end;) {
    const auto event = next;
    next += isScanCode(*event) && isKey(event[1]) ? 2 : 1;
    if (passes({event, next}, frame.time)) {
      passed.insert(passed.end(), event, next);
    }
    if (capsLock_ == CapsLock::Tapping) {
      emit(passed);
      openTap({{next, frame.events.end()}, frame.time}, now);
      return;
    }
  }
  emit(passed, *end);
}

/// Whether an event, which stands behind its scan code if it has one, passes at once.
bool CapsLockRewriter::passes(WithScanCode event, Time time) {
  const InputEvent& last = event.back();
  if (isKey(last) && last.value == KeyRepeated) {
    return false;
  }
  return !isCapsLock(last) || passesCapsLock(event, time);
}

bool CapsLockRewriter::passesCapsLock(WithScanCode event, Time time) {
  if (event.back().value == KeyReleased) {
    return passesRelease(time);
  }
  if (rule_.hold > std::chrono::milliseconds::zero()) {
    withheld_.assign(event.begin(), event.end());
    capsLock_ = CapsLock::Withheld;
    deadline_ = time + rule_.hold;
    return false;
  }
  capsLock_ = lit_ ? CapsLock::Tapping : CapsLock::Passed;
  return true;
}

bool CapsLockRewriter::passesRelease(Time time) {
  if (capsLock_ == CapsLock::Withheld && time >= *deadline_) {
    countHeldPress();  // It was typed while a tap was open, and has waited for that.
  }
  const bool isKnown = capsLock_ == CapsLock::Passed || capsLock_ == CapsLock::Up;
  capsLock_ = CapsLock::Up;
  deadline_.reset();
  return isKnown;
}

void CapsLockRewriter::countHeldPress() {
  emit(withheld_);
  capsLock_ = CapsLock::Passed;
  deadline_.reset();
}

void CapsLockRewriter::openTap(Frame rest, Time now) {
  deadline_ = now + rule_.gap;
  waiting_.push_front(std::move(rest));
}

void CapsLockRewriter::closeTap() {
  emit({{EV_KEY, KEY_CAPSLOCK, KeyReleased}});
  capsLock_ = CapsLock::Tapped;
  deadline_.reset();
}

/// Adds a frame to the output, if there is anything in it.
void CapsLockRewriter::emit(const Events& events, const InputEvent& end) {
  if (events.empty()) {
    return;
  }
  for (const InputEvent& event : events) {
    if (isKey(event)) {
      down_.set(event.code, event.value != KeyReleased);
    }
  }
  output_.insert(output_.end(), events.begin(), events.end());
  output_.push_back(end);
}

}  // namespace zephlin
