#include "Tests/Unit/KeyboardService/Service/Evdev/RewriterHistory.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <set>
#include <stdexcept>

#include "KeyboardService/Service/Evdev/CapsLockRewriter.h"

namespace zephlin {
namespace {

using std::chrono::milliseconds;
using Events = CapsLockRewriter::Events;
using Time = CapsLockRewriter::Time;

constexpr std::array<std::uint16_t, 5> keys{KEY_CAPSLOCK, KEY_A, KEY_B, KEY_LEFTSHIFT, KEY_ENTER};
constexpr std::array<milliseconds, 3> holds{milliseconds(0), milliseconds(20), milliseconds(75)};

/// Throws std::logic_error unless what has to hold does.
void requireThat(bool condition, const char* what) {
  if (!condition) {
    throw std::logic_error(what);
  }
}

bool isLeftOut(const InputEvent& event) {
  return isCapsLock(event) || (event.type == EV_KEY && event.value == KeyRepeated);
}

/// Without the ends of frames, Caps Lock and repetitions.
std::vector<InputEvent> others(const std::vector<InputEvent>& events) {
  std::vector<InputEvent> result;
  std::copy_if(events.begin(), events.end(), std::back_inserter(result),
               [](const auto& each) { return each.type != EV_SYN && !isLeftOut(each); });
  return result;
}

class History {
 public:
  explicit History(std::uint8_t kind)
      : rule_{holds.at(kind % holds.size()), milliseconds(kind / 8 % 8)},
        hasOneRule_((kind & 0x80U) == 0),
        isAlwaysLit_((kind & 0x40U) != 0),
        rewriter_(rule_) {
    rewriter_.setLed(isAlwaysLit_);
  }

  void step(std::uint8_t operation, std::uint8_t argument) {
    switch (operation % 8) {
      case 0:
        return turnKey(KEY_CAPSLOCK, argument);
      case 1:
      case 2:
        return turnKey(keys.at(argument % keys.size()), argument);
      case 3:
      case 4:
        return endFrame(milliseconds(argument / 4), {EV_SYN, SYN_REPORT, argument % 2});
      case 5:
        return operation % 16 == 5 ? put({EV_REL, REL_WHEEL, argument}) : repeatKey(argument);
      case 6:
        if (!isAlwaysLit_) {
          rewriter_.setLed(argument % 2 == 1);
        }
        return;
      default:
        return beUnusual(argument);
    }
  }

  void finish(bool releasedByKeys) {
    if (!releasedByKeys) {
      collect(rewriter_.releaseAll());
      requireThat(outDown_.empty(), "no key is down after releasing all");
      return;
    }
    for (const std::uint16_t key : std::set<std::uint16_t>(inDown_)) {
      turnKey(key, 0);
    }
    endFrame(milliseconds(1), endOfFrame);
    // Each tap that waits takes its time.
    for (std::size_t count = 0; count < in_.size() && rewriter_.deadline(); ++count) {
      advance(milliseconds(100));
    }
    requireThat(!rewriter_.deadline(), "nothing is left to do in the end");
    requireThat(outDown_.empty(), "no key is down in the end");
    requireThat(others(out_) == others(in_), "other events come out as they went in");
    requirePresses();
  }

 private:
  void beUnusual(std::uint8_t argument) {
    if (argument % 4 == 0) {
      endFrame(milliseconds(0), {EV_SYN, SYN_DROPPED, 0});
    } else if (!hasOneRule_) {
      rewriter_.setRule({holds.at(argument % holds.size()), milliseconds(argument / 8)});
    }
  }

  void turnKey(std::uint16_t key, std::uint8_t argument) {
    const bool goesDown = inDown_.insert(key).second;
    if (!goesDown) {
      inDown_.erase(key);
    }
    if (argument % 8 > 2) {
      put({EV_MSC, MSC_RAW, key});
    }
    put({EV_KEY, key, goesDown ? KeyPressed : KeyReleased});
  }

  void repeatKey(std::uint8_t argument) {
    if (!inDown_.empty()) {
      put({EV_KEY, *inDown_.begin(), KeyRepeated});
    } else {
      put({EV_MSC, MSC_RAW, argument});
    }
  }

  void put(const InputEvent& event) {
    in_.push_back(event);
    frame_.push_back(event);
    collect(rewriter_.take(event, now_, now_));
  }

  void endFrame(milliseconds later, const InputEvent& end) {
    for (const InputEvent& event : frame_) {
      countPress(event);
    }
    frame_.clear();
    in_.push_back(end);
    collect(rewriter_.take(end, now_, now_));
    advance(later);
  }

  void countPress(const InputEvent& event) {
    if (!isCapsLock(event) || event.value == KeyRepeated) {
      return;
    }
    if (event.value == KeyPressed) {
      pressedAt_ = now_;
    }
    const bool isCounted = rule_.hold == milliseconds(0)
                               ? event.value == KeyPressed
                               : event.value == KeyReleased && now_ - pressedAt_ >= rule_.hold;
    presses_ += isCounted ? 1 : 0;
  }

  void advance(milliseconds time) {
    const Time end = now_ + time;
    while (rewriter_.deadline() && *rewriter_.deadline() <= end) {
      now_ = std::max(now_, *rewriter_.deadline());
      collect(rewriter_.expire(now_ - Time(1)));
      collect(rewriter_.expire(now_));
    }
    now_ = end;
  }

  void collect(const Events& events) {
    bool inFrame = false;
    for (const InputEvent& event : events) {
      requireThat(event.type != EV_SYN || event.code == SYN_REPORT,
                  "no queue overflows for programs");
      requireThat(inFrame || event.type != EV_SYN, "no frame is empty");
      inFrame = event.type != EV_SYN;
      if (event.type == EV_KEY) {
        const bool turned = event.value == KeyPressed ? outDown_.insert(event.code).second
                                                      : outDown_.erase(event.code) > 0;
        requireThat(turned && event.value != KeyRepeated, "keys go down and up in turn");
      }
      out_.push_back(event);
    }
    requireThat(!inFrame, "what comes out ends with a frame");
  }

  void requirePresses() {
    std::size_t presses = 0;
    for (std::size_t index = 0; index < out_.size(); ++index) {
      if (out_[index] != InputEvent{EV_KEY, KEY_CAPSLOCK, KeyPressed}) {
        continue;
      }
      ++presses;
      if (hasOneRule_ && isAlwaysLit_ && rule_.hold == milliseconds(0)) {
        requireThat(out_.at(index + 1) == endOfFrame &&
                        out_.at(index + 2) == InputEvent{EV_KEY, KEY_CAPSLOCK, KeyReleased} &&
                        out_.at(index + 3) == endOfFrame,
                    "the release follows the press");
      }
    }
    requireThat(!hasOneRule_ || presses == presses_, "the presses that count come out");
  }

  CapsLockRule rule_;
  bool hasOneRule_;
  bool isAlwaysLit_;
  CapsLockRewriter rewriter_;
  Time now_{0};
  Time pressedAt_{0};
  std::size_t presses_ = 0;
  std::set<std::uint16_t> inDown_;
  std::set<std::uint16_t> outDown_;
  Events frame_;
  Events in_;
  Events out_;
};

}  // namespace

void checkHistory(const std::vector<std::uint8_t>& bytes) {
  if (bytes.size() < 2) {
    return;
  }
  History history(bytes[0]);
  for (std::size_t index = 2; index + 1 < bytes.size(); index += 2) {
    history.step(bytes[index], bytes[index + 1]);
  }
  history.finish(bytes[1] % 4 != 0);
}

}  // namespace zephlin
