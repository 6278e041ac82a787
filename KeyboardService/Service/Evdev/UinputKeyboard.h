#pragma once

#include <libevdev/libevdev-uinput.h>
#include <linux/input.h>

#include <memory>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Service/Evdev/InputEvent.h"

namespace zephlin {

/// A keyboard created through uinput that looks like another one to programs: same bus, vendor,
/// product, name and capabilities, so that it gets the same configuration. A Caps Lock LED is
/// always among them: programs set it to show whether the lock is on. When it is destroyed the
/// kernel releases its keys.
class UinputKeyboard {
 public:
  /// `original` is the open event device of the keyboard. Throws RequestError if uinput is absent
  /// or not accessible.
  explicit UinputKeyboard(int original);

  /// Throws the same, and creates nothing.
  static void requireUinput();

  [[nodiscard]] int descriptor() const { return descriptor_.get(); }

  /// Throws RequestError if the kernel does not take them.
  void write(const std::vector<InputEvent>& events);

  /// The LEDs that programs have set since the last call.
  std::vector<InputEvent> takeLedEvents();

 private:
  struct Destroy {
    void operator()(libevdev_uinput* device) const { libevdev_uinput_destroy(device); }
  };

  FileDescriptor descriptor_;
  std::unique_ptr<libevdev_uinput, Destroy> device_;
  std::vector<input_event> written_;  ///< Kept, so that no key waits for memory.
};

}  // namespace zephlin
