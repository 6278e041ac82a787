#include "KeyboardService/Service/Evdev/CapsLockRewriter.h"

#include <utility>

namespace zephlin {
namespace {

using Events = CapsLockRewriter::Events;

bool isKey(const InputEvent& event) {
  return event.type == EV_KEY && event.code < KEY_CNT;
}

}  // namespace

const Events& CapsLockRewriter::take(const InputEvent& event, Time time, Time now) {
  output_.clear();
  passDeadlines(time, now);
  unfinished_.push_back(event);
  if (endsFrame(event)) {
    if (event.code == SYN_DROPPED) {
      unfinished_.back() = endOfFrame;
    }
    if (capsLock_ == CapsLock::Tapping) {
      waiting_.push_back({unfinished_, time});
    } else {
      takeFrame(unfinished_, time, now);
    }
    unfinished_.clear();
  }
  return output_;
}

const Events& CapsLockRewriter::expire(Time now) {
  output_.clear();
  passDeadlines(now, now);
  return output_;
}

const Events& CapsLockRewriter::releaseAll() {
  output_.clear();
  unfinished_.clear();
  while (capsLock_ == CapsLock::Tapping) {
    closeTap();
    takeWaiting({});
  }
  deadline_.reset();
  capsLock_ = CapsLock::Up;
  for (std::uint16_t code = 0; code < KEY_CNT; ++code) {
    if (down_.test(code)) {
      emitRelease(code);
    }
  }
  endFrame();
  return output_;
}

/// Does what is due by `time`, read at `now`.
void CapsLockRewriter::passDeadlines(Time time, Time now) {
  while (deadline_ && time >= *deadline_) {
    if (capsLock_ == CapsLock::Withheld) {
      countHeldPress();
    } else {
      closeTap();
      takeWaiting(now);
    }
  }
}

void CapsLockRewriter::takeWaiting(Time now) {
  while (capsLock_ != CapsLock::Tapping && !waiting_.empty()) {
    const Frame frame = std::move(waiting_.front());
    waiting_.pop_front();
    takeFrame(frame.events, frame.time, now);
  }
}

void CapsLockRewriter::takeFrame(View frame, Time time, Time now) {
  const auto end = frame.end() - 1;
  for (auto next = frame.begin(); next != end; ++next) {
    if (passes(*next, time)) {
      emit(*next);
    }
    if (capsLock_ == CapsLock::Tapping) {
      endFrame();
      deadline_ = now + rule_.gap;
      waiting_.push_front({{next + 1, frame.end()}, time});
      return;
    }
  }
  endFrame(*end);
}

/// Whether an event passes at once.
bool CapsLockRewriter::passes(const InputEvent& event, Time time) {
  if (isKey(event) && event.value == KeyRepeated) {
    return false;
  }
  return !isCapsLock(event) || passesCapsLock(event, time);
}

bool CapsLockRewriter::passesCapsLock(const InputEvent& event, Time time) {
  if (event.value == KeyReleased) {
    return passesRelease(time);
  }
  if (rule_.hold > std::chrono::milliseconds::zero()) {
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
  emit({EV_KEY, KEY_CAPSLOCK, KeyPressed});
  endFrame();
  capsLock_ = CapsLock::Passed;
  deadline_.reset();
}

void CapsLockRewriter::closeTap() {
  emitRelease(KEY_CAPSLOCK);
  endFrame();
  capsLock_ = CapsLock::Tapped;
  deadline_.reset();
}

void CapsLockRewriter::emit(const InputEvent& event) {
  if (isKey(event)) {
    down_.set(event.code, event.value != KeyReleased);
  }
  output_.push_back(event);
}

void CapsLockRewriter::emitRelease(std::uint16_t code) {
  emit({EV_KEY, code, KeyReleased});
}

/// Adds the end to what came out since the last one, if anything did.
void CapsLockRewriter::endFrame(const InputEvent& end) {
  if (!output_.empty() && !endsFrame(output_.back())) {
    output_.push_back(end);
  }
}

}  // namespace zephlin
