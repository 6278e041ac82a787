#pragma once

#include <bitset>
#include <vector>

#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

/// Makes up for events that were lost because the kernel's queue was full: remembers which keys are
/// held, and presses and releases those that have changed meanwhile.
class QueueOverflow {
 public:
  using Keys = std::bitset<KEY_CNT>;

  /// Returns false for what is left of lost frames: from SYN_DROPPED, which itself counts, to the
  /// next end of a frame.
  bool counts(const InputEvent& event) {
    if (isOver_) {
      isOver_ = false;
      isLosing_ = false;
    }
    if (isLosing_) {
      isOver_ = event.type == EV_SYN && event.code == SYN_REPORT;
      return false;
    }
    isLosing_ = event.type == EV_SYN && event.code == SYN_DROPPED;
    if (event.type == EV_KEY && event.value != KeyRepeated) {
      held_.set(event.code, event.value == KeyPressed);
    }
    return true;
  }

  /// Whether the last event was the end of what is lost, so that `differences` are due.
  [[nodiscard]] bool isOver() const { return isOver_; }

  /// A frame that makes up for what was lost, given the keys that are held now.
  std::vector<InputEvent> differences(const Keys& now) {
    std::vector<InputEvent> frame;
    for (std::uint16_t code = 0; code < KEY_CNT; ++code) {
      if (now[code] != held_[code]) {
        frame.push_back({EV_KEY, code, now[code] ? KeyPressed : KeyReleased});
      }
    }
    frame.push_back(endOfFrame);
    held_ = now;
    return frame;
  }

 private:
  Keys held_;
  bool isLosing_ = false;
  bool isOver_ = false;
};

}  // namespace zephlin
