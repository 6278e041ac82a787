#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

/// Follows a Caps Lock that was released early and is still held down, on a keyboard that repeats
/// in hardware. The kernel takes the key for released, so it would report the first repetition as a
/// press, and the lock would go on again: before that, the kernel is to be made to take the key for
/// held. It reads no clock.
///
/// Of the real release the kernel then reports nothing but the scan code, so these have to be let
/// in for as long as the key is followed.
class HardwareRepeat {
 public:
  using Time = std::chrono::microseconds;

  /// The scan codes of Caps Lock on this keyboard.
  explicit HardwareRepeat(std::vector<std::int32_t> scanCodes) : scanCodes_(std::move(scanCodes)) {}

  [[nodiscard]] bool isCapsLockScanCode(const InputEvent& event) const;

  /// The key was pressed at `pressed` and is released early, at `now`.
  void follow(Time pressed, Time now);

  /// Takes all events that arrive.
  void take(const InputEvent& event);

  [[nodiscard]] bool isFollowing() const { return phase_ != Phase::Up; }

  /// When the kernel is to be made to take the key for held; nothing if it is up, or that is done.
  [[nodiscard]] std::optional<Time> deadline() const;

  /// The kernel takes the key for held, or the key came up before.
  void blocked(bool isHeld) { phase_ = isHeld ? Phase::Blocked : Phase::Up; }

 private:
  enum class Phase {
    Up,        ///< For all that matters here.
    Released,  ///< Early; it is still held down.
    Blocked,   ///< The kernel takes it for held again, and programs for released.
  };

  void endFrame();

  std::vector<std::int32_t> scanCodes_;
  Phase phase_ = Phase::Up;
  Time deadline_{};
  bool hasScanCode_ = false;
  std::optional<std::int32_t> value_;
};

/// What one descriptor receives from the moment on in which it has grabbed such a keyboard, to let
/// go of it after writing a press of Caps Lock, which only the kernel is to take note of.
class GrabbedMoment {
 public:
  using Time = HardwareRepeat::Time;
  using Events = std::vector<InputEvent>;

  explicit GrabbedMoment(const HardwareRepeat& repeat) : repeat_(repeat) {}

  void take(const InputEvent& event, Time time);

  /// Whether Caps Lock has come up: not while it was taken for released already, which leaves the
  /// press that was written without an end.
  [[nodiscard]] bool isUp() const { return isUp_; }
  [[nodiscard]] bool isPressLeft() const { return isPressLeft_; }

  /// Writes for programs what they have missed of other keys: all that came before `firstSeen`, the
  /// first event which they have seen again. The kernel passes a key on only if it changes it, and
  /// programs ignore the release of a key that they have not seen pressed.
  [[nodiscard]] Events missed(std::optional<Time> firstSeen) const;

 private:
  struct Key {
    InputEvent event;
    Time time;
  };

  const HardwareRepeat& repeat_;
  std::vector<Key> keys_;
  bool hasScanCode_ = false;
  std::optional<std::int32_t> value_;
  bool isUp_ = false;
  bool isPressLeft_ = false;
};

}  // namespace zephlin
