#include "KeyboardService/Service/Evdev/PhysicalKeyboard.h"

#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <system_error>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

using KeyBits = std::array<unsigned char, KEY_CNT / 8>;
using LedBits = std::array<unsigned char, LED_CNT / 8>;

[[noreturn]] void throwGone(int errorNumber) {
  throw std::system_error(errorNumber, std::generic_category(), "reading a keyboard");
}

[[noreturn]] void throwUnusable(const std::string& path, int errorNumber) {
  switch (errorNumber) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
      throwGone(ENODEV);
    case EACCES:
    case EPERM:
      throw RequestError("cannot open " + path + errnoText(errorNumber) +
                         "; run zephlin-hidd as root or as a user in the group input");
    default:
      throw RequestError("cannot open " + path + errnoText(errorNumber));
  }
}

FileDescriptor openNode(const std::string& path) {
  FileDescriptor descriptor(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  if (!descriptor.isOpen()) {
    throwUnusable(path, errno);
  }
  return descriptor;
}

std::chrono::microseconds timeOf(const input_event& event) {
  return std::chrono::seconds(event.input_event_sec) +
         std::chrono::microseconds(event.input_event_usec);
}

}  // namespace

PhysicalKeyboard::PhysicalKeyboard(const std::string& path) : descriptor_(openNode(path)) {
  libevdev* device = nullptr;
  if (const int error = libevdev_new_from_fd(descriptor_.get(), &device); error < 0) {
    throwUnusable(path, -error);
  }
  device_.reset(device);
  libevdev_set_clock_id(device, CLOCK_MONOTONIC);
  for (std::uint16_t code = 0; code < LED_CNT; ++code) {
    if (libevdev_has_event_code(device, EV_LED, code) != 0) {
      ledCodes_.push_back(code);
    }
  }
  libevdev_enable_event_code(device, EV_LED, LED_CAPSL, nullptr);
}

PhysicalKeyboard::Grab PhysicalKeyboard::grab() {
  if (isAnyKeyHeld()) {
    return Grab::KeyIsHeld;
  }
  if (const int error = -libevdev_grab(device_.get(), LIBEVDEV_GRAB); error != 0) {
    if (error != EBUSY) {
      throwGone(error);
    }
    return Grab::TakenByAnother;
  }
  while (takeEvent()) {  // Programs have seen these.
  }
  if (isAnyKeyHeld()) {
    libevdev_grab(device_.get(), LIBEVDEV_UNGRAB);
    return Grab::KeyIsHeld;
  }
  return Grab::Done;
}

std::optional<PhysicalKeyboard::TimedEvent> PhysicalKeyboard::takeEvent() {
  // The descriptor does not block all the same; without that flag libevdev looks for more to read
  // before each event that it hands out, not only when it has none left.
  constexpr unsigned next = LIBEVDEV_READ_FLAG_NORMAL | LIBEVDEV_READ_FLAG_BLOCKING;
  constexpr unsigned nextDifference = LIBEVDEV_READ_FLAG_SYNC;
  for (;;) {
    input_event event{};
    const int status =
        libevdev_next_event(device_.get(), isCatchingUp_ ? nextDifference : next, &event);
    if (status == -EAGAIN && !isCatchingUp_) {
      return std::nullopt;
    }
    if (status < 0 && status != -EAGAIN) {
      throwGone(-status);
    }
    isCatchingUp_ = status == LIBEVDEV_READ_STATUS_SYNC;
    if (status >= 0) {
      return TimedEvent{{event.type, event.code, event.value}, timeOf(event)};
    }
  }
}

std::vector<InputEvent> PhysicalKeyboard::leds() const {
  LedBits bits{};
  ::ioctl(descriptor_.get(), EVIOCGLED(bits.size()), bits.data());
  std::vector<InputEvent> leds;
  for (const std::uint16_t code : ledCodes_) {
    leds.push_back({EV_LED, code, bits.at(code / 8U) >> code % 8U & 1});
  }
  return leds;
}

void PhysicalKeyboard::setLed(const InputEvent& led) {
  libevdev_kernel_set_led_value(device_.get(), led.code,
                                led.value != 0 ? LIBEVDEV_LED_ON : LIBEVDEV_LED_OFF);
}

/// Asks the kernel, whose answer is newer than any event that is still to be taken.
bool PhysicalKeyboard::isAnyKeyHeld() const {
  KeyBits bits{};
  if (::ioctl(descriptor_.get(), EVIOCGKEY(bits.size()), bits.data()) < 0) {
    throwGone(errno);
  }
  return std::any_of(bits.begin(), bits.end(), [](unsigned char each) { return each != 0; });
}

}  // namespace zephlin
