#pragma once

#include <bitset>
#include <chrono>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

/// How presses of Caps Lock count.
struct CapsLockRule {
  /// How long the key must be held before its press counts. With zero it counts at once, and the
  /// release that XKB waits for is sent early.
  std::chrono::milliseconds hold{0};

  /// The time between a press and its early release. Some compositors miss a key that is down for
  /// no time at all.
  std::chrono::microseconds gap{0};

  bool operator==(const CapsLockRule&) const = default;
};

/// Turns the events of one keyboard into those that programs see. It reads no clock: times come
/// with the events, as durations since some fixed moment.
///
/// XKB locks at the press of Caps Lock and unlocks at its release. So with a hold of zero, and only
/// while the lock's LED is lit, a press becomes press and release, and the real release is
/// dropped. While the LED is off the key passes as it is: it may well be a Control, an Escape or
/// the modifier of a screen reader, which has to stay down for as long as it is held. Other keys
/// wait until the release is out, so that their letters come after the unlocking.
///
/// Repetitions are dropped, as the device that shows the events repeats by itself. All other events
/// come out in their order, with a frame's end wherever one is needed.
class CapsLockRewriter {
 public:
  using Time = std::chrono::microseconds;
  using Events = std::vector<InputEvent>;

  explicit CapsLockRewriter(CapsLockRule rule) : rule_(rule) {}

  /// Applies to later presses.
  void setRule(CapsLockRule rule) { rule_ = rule; }

  /// Whether the LED of Caps Lock is lit, which shows whether the lock is on.
  void setLed(bool lit) { lit_ = lit; }

  /// Takes the next event, which happened at `time` and is read at `now`, and returns what comes
  /// out: whole frames. A tap's gap begins when its press comes out, a hold when the key went down.
  /// Here and below, the result is good until the next call.
  const Events& take(const InputEvent& event, Time time, Time now);

  /// To be called at the deadline; does nothing before it.
  const Events& expire(Time now);

  [[nodiscard]] std::optional<Time> deadline() const { return deadline_; }

  /// Returns what is waiting, releases every key and forgets the rest.
  const Events& releaseAll();

 private:
  enum class CapsLock {
    Up,
    Passed,
    Withheld,  ///< Pressed, and not held long enough yet.
    Tapping,   ///< Pressed, and the early release is still to come out.
    Tapped,    ///< Held, but released for the programs.
  };

  using View = std::span<const InputEvent>;

  struct Frame {
    Events events;  ///< Its end is the last one.
    Time time{};
  };

  void passDeadlines(Time time, Time now);
  void takeWaiting(Time now);
  void takeFrame(View frame, Time time, Time now);
  bool passes(const InputEvent& event, Time time);
  bool passesCapsLock(const InputEvent& event, Time time);
  bool passesRelease(Time time);
  void countHeldPress();
  void closeTap();
  void emit(const InputEvent& event);
  void emitRelease(std::uint16_t code);
  void endFrame(const InputEvent& end = endOfFrame);

  CapsLockRule rule_;
  bool lit_ = false;
  CapsLock capsLock_ = CapsLock::Up;
  std::optional<Time> deadline_;  ///< Only while Caps Lock is withheld or being tapped.
  Events unfinished_;
  std::deque<Frame> waiting_;  ///< Empty except while Caps Lock is being tapped.
  std::bitset<KEY_CNT> down_;
  Events output_;
};

}  // namespace zephlin
