#include "KeyboardService/Service/Evdev/HardwareRepeat.h"

#include <algorithm>
#include <set>

namespace zephlin {
namespace {

using namespace std::chrono_literals;

/// Keyboards begin to repeat after 250 ms at the earliest. By then, most presses are over, and
/// desktops have set the LEDs, for which they might have to wait during the grab.
constexpr HardwareRepeat::Time timeUntilBlocked = 150ms;

/// A press that is read later than this may be over.
constexpr HardwareRepeat::Time maximumLateness = 10ms;

bool isEnd(const InputEvent& event) {
  return event.type == EV_SYN && event.code == SYN_REPORT;
}

}  // namespace

bool HardwareRepeat::isCapsLockScanCode(const InputEvent& event) const {
  return isScanCode(event) &&
         std::find(scanCodes_.begin(), scanCodes_.end(), event.value) != scanCodes_.end();
}

void HardwareRepeat::follow(Time pressed, Time now) {
  if (now - pressed <= maximumLateness) {
    phase_ = Phase::Released;
    deadline_ = pressed + timeUntilBlocked;
  }
}

void HardwareRepeat::take(const InputEvent& event) {
  hasScanCode_ = hasScanCode_ || isCapsLockScanCode(event);
  if (isCapsLock(event)) {
    value_ = event.value;
  }
  if (isEnd(event)) {
    endFrame();
    hasScanCode_ = false;
    value_.reset();
  }
}

void HardwareRepeat::endFrame() {
  const bool isReleased = value_.value_or(KeyReleased) == KeyReleased;
  switch (phase_) {
    case Phase::Up:
      break;
    case Phase::Released:
      // The early release has no scan code. A press is another one, as the key is taken for up.
      if (hasScanCode_ && (isReleased || value_ == KeyPressed)) {
        phase_ = Phase::Up;
      }
      break;
    case Phase::Blocked:
      // The kernel itself releases keys when it resets the keyboard.
      if (value_ == KeyReleased) {
        phase_ = Phase::Up;
      }
  }
}

std::optional<HardwareRepeat::Time> HardwareRepeat::deadline() const {
  return phase_ == Phase::Released ? std::optional(deadline_) : std::nullopt;
}

void GrabbedMoment::take(const InputEvent& event, Time time) {
  hasScanCode_ = hasScanCode_ || repeat_.isCapsLockScanCode(event);
  if (isCapsLock(event)) {
    value_ = event.value;
  } else if (event.type == EV_KEY && event.value != KeyRepeated) {
    keys_.push_back({event, time});
  }
  if (isEnd(event)) {
    if (hasScanCode_) {
      isUp_ = value_.value_or(KeyReleased) == KeyReleased;
    } else if (value_ == KeyPressed) {
      isPressLeft_ = isUp_;
    }
    hasScanCode_ = false;
    value_.reset();
  }
}

GrabbedMoment::Events GrabbedMoment::missed(std::optional<Time> firstSeen) const {
  Events events;
  std::set<std::uint16_t> codes;
  for (const auto& [first, time] : keys_) {
    if ((firstSeen && time >= *firstSeen) || !codes.insert(first.code).second) {
      continue;
    }
    Events history;
    for (const Key& each : keys_) {
      if (each.event.code == first.code) {
        history.insert(history.end(), {each.event, endOfFrame});
      }
    }
    if (history[history.size() - 2].value == first.value) {
      const InputEvent opposite{EV_KEY, first.code,
                                first.value == KeyPressed ? KeyReleased : KeyPressed};
      history.insert(history.begin(), {opposite, endOfFrame});
    }
    events.insert(events.end(), history.begin(), history.end());
  }
  return events;
}

}  // namespace zephlin
