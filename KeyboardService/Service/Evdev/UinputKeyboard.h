#pragma once

#include <libevdev/libevdev-uinput.h>
#include <linux/input.h>

#include <memory>
#include <vector>

#include "KeyboardService/Service/Evdev/PhysicalKeyboard.h"

namespace zephlin {

/// A keyboard created through uinput that looks like another one to programs: same bus, vendor,
/// product, name and capabilities, so that it gets the same configuration. When it is destroyed the
/// kernel releases its keys.
class UinputKeyboard {
 public:
  /// Throws RequestError if uinput is absent or not accessible.
  explicit UinputKeyboard(const PhysicalKeyboard& original);

  [[nodiscard]] int descriptor() const { return descriptor_.get(); }

  /// What the kernel does not take is lost.
  void write(const std::vector<InputEvent>& events);

  /// The LEDs that programs have set since the last call.
  std::vector<InputEvent> takeLedEvents();

  /// Throws RequestError if a clone could not be created.
  static void requireSupport();

 private:
  struct Destroy {
    void operator()(libevdev_uinput* device) const { libevdev_uinput_destroy(device); }
  };

  FileDescriptor descriptor_;
  std::unique_ptr<libevdev_uinput, Destroy> device_;
  std::vector<input_event> written_;  ///< Kept, so that no key waits for memory.
};

}  // namespace zephlin
