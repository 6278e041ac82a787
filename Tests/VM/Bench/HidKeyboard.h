#pragma once

#include <fcntl.h>
#include <linux/input.h>
#include <linux/uhid.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// What keyboards send for keys (HID Usage Tables, page 7).
enum class Usage : std::uint8_t { None = 0, A = 0x04, CapsLock = 0x39 };

/// A USB keyboard to the kernel, made through uhid, so that its keys take the same way through HID
/// as those of a real one. The destructor unplugs it.
class HidKeyboard {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr const char* name = "Measured Keyboard";

  explicit HidKeyboard(bool hasLeds) : uhid_(::open("/dev/uhid", O_RDWR | O_CLOEXEC | O_NONBLOCK)) {
    uhid_event event{};
    event.type = UHID_CREATE2;
    auto& request = event.u.create2;
    std::strcpy(reinterpret_cast<char*>(request.name), name);
    request.bus = BUS_USB;
    request.vendor = 0x1209;
    request.product = 0x0001;
    const std::size_t size = hasLeds ? description.size() : description.size() - ledItems;
    std::copy_n(description.begin(), size - 1, request.rd_data);
    request.rd_data[size - 1] = endOfCollection;
    request.rd_size = static_cast<std::uint16_t>(size);
    send(event, sizeof event);
  }

  /// Holds this key and no other. Returns the time just before.
  Clock::time_point hold(Usage usage) {
    // What the kernel sends to the keyboard, such as its LEDs, would fill the queue.
    uhid_event event{};
    while (::read(uhid_.get(), &event, sizeof event) > 0) {
    }
    event = {};
    event.type = UHID_INPUT2;
    event.u.input2.size = reportSize;
    event.u.input2.data[2] = static_cast<std::uint8_t>(usage);
    const auto start = Clock::now();
    send(event, offsetof(uhid_event, u.input2.data) + reportSize);
    return start;
  }

 private:
  static constexpr std::uint16_t reportSize = 8;
  static constexpr std::uint8_t endOfCollection = 0xc0;

  /// The boot keyboard's (HID 1.11, appendix B.1), with the LEDs moved to its end.
  static constexpr std::array<std::uint8_t, 63> description{
      0x05,           0x01, 0x09, 0x06, 0xa1, 0x01,                          // a keyboard
      0x05,           0x07, 0x19, 0xe0, 0x29, 0xe7, 0x15, 0x00, 0x25, 0x01,  // eight modifiers,
      0x75,           0x01, 0x95, 0x08, 0x81, 0x02,                          // a bit each
      0x95,           0x01, 0x75, 0x08, 0x81, 0x01,                          // a byte of padding
      0x95,           0x06, 0x75, 0x08, 0x15, 0x00, 0x25, 0x65,              // six keys,
      0x05,           0x07, 0x19, 0x00, 0x29, 0x65, 0x81, 0x00,              // a byte each
      0x95,           0x05, 0x75, 0x01, 0x05, 0x08, 0x19, 0x01, 0x29, 0x05,  // five LEDs,
      0x91,           0x02, 0x95, 0x01, 0x75, 0x03, 0x91, 0x01,  // a bit each, and padding
      endOfCollection};
  static constexpr std::size_t ledItems = 18;

  void send(const uhid_event& event, std::size_t size) {
    if (::write(uhid_.get(), &event, size) < 0) {
      throw std::runtime_error("uhid cannot be used");
    }
  }

  FileDescriptor uhid_;
};

}  // namespace zephlin
