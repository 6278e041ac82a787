#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "KeyboardService/Service/Evdev/EventNode.h"
#include "KeyboardService/Service/Evdev/HardwareRepeat.h"

namespace zephlin {

/// Keeps a Caps Lock that was released early from being pressed again by a keyboard that repeats in
/// hardware. For a moment it grabs the keyboard, by a descriptor of its own, and writes a press
/// that nobody else sees: from then on the kernel takes repetitions for what they are, and programs
/// ignore the real release. Nothing remains of it if this process ends.
class RepeatBlocker {
 public:
  using Time = HardwareRepeat::Time;

  /// Reads what has arrived at the descriptor that hears nothing but Caps Lock, hands it to
  /// `repeat`, and returns the time of the first scan code among it. Writes nothing.
  using ReadWatched = std::function<std::optional<Time>()>;

  /// Opens the node once more. Throws as EventNode does, as does `block`.
  RepeatBlocker(const std::string& path, HardwareRepeat& repeat, ReadWatched readWatched);

  /// Takes some hundredths of a second. Returns false if another program has grabbed the keyboard.
  bool block();

 private:
  void readAll(GrabbedMoment& moment);
  void discard();
  void write(const GrabbedMoment::Events& events);

  EventNode node_;
  HardwareRepeat& repeat_;
  ReadWatched readWatched_;
};

}  // namespace zephlin
