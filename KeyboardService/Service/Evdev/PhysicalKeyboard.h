#pragma once

#include <libevdev/libevdev.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

/// A keyboard's event device, open and non-blocking. The destructor releases the grab.
class PhysicalKeyboard {
 public:
  struct TimedEvent {
    InputEvent event;
    std::chrono::microseconds time;  ///< On the monotonic clock.
  };

  enum class Grab { Done, KeyIsHeld, TakenByAnother };

  /// `path` is one in /dev. Throws RequestError, or std::system_error with ENODEV if it has gone.
  explicit PhysicalKeyboard(const std::string& path);

  [[nodiscard]] int descriptor() const { return descriptor_.get(); }

  /// What it can do, for a clone. A Caps Lock LED is always among it: programs set it to show
  /// whether the lock is on.
  [[nodiscard]] const libevdev* capabilities() const { return device_.get(); }

  /// Grabs the keyboard unless a key is held: programs that have seen the press would miss the
  /// release. Throws std::system_error if the device has gone.
  Grab grab();

  /// The next event, if there is one. After an overflow of the kernel's queue, SYN_DROPPED is
  /// followed by the differences. Throws std::system_error if the device has gone.
  std::optional<TimedEvent> takeEvent();

  /// The state of each LED that the keyboard really has.
  [[nodiscard]] std::vector<InputEvent> leds() const;

  /// Works while nobody else has grabbed the keyboard.
  void setLed(const InputEvent& led);

 private:
  struct Release {
    void operator()(libevdev* device) const { libevdev_free(device); }
  };

  [[nodiscard]] bool isAnyKeyHeld() const;

  FileDescriptor descriptor_;
  std::unique_ptr<libevdev, Release> device_;
  std::vector<std::uint16_t> ledCodes_;
  bool isCatchingUp_ = false;  ///< The kernel's queue has overflowed.
};

}  // namespace zephlin
