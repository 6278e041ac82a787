#include "KeyboardService/Service/Evdev/UinputKeyboard.h"

#include <fcntl.h>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <string>
#include <system_error>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Service/Evdev/KeyboardNodes.h"

namespace zephlin {
namespace {

const char* advice(int errorNumber) {
  switch (errorNumber) {
    case EACCES:
    case EPERM:
      return "; run zephlin-hidd as root, or give its user access by a udev rule";
    case ENOENT:
    case ENODEV:
    case ENXIO:
      return "; run modprobe uinput as root, or start a kernel that has this module";
    default:
      return "";
  }
}

RequestError unusable(int errorNumber) {
  return RequestError("cannot use /dev/uinput" + errnoText(errorNumber) + advice(errorNumber));
}

FileDescriptor openUinput() {
  FileDescriptor descriptor(::open("/dev/uinput", O_RDWR | O_NONBLOCK | O_CLOEXEC));
  if (!descriptor.isOpen()) {
    throw unusable(errno);
  }
  return descriptor;
}

}  // namespace

UinputKeyboard::UinputKeyboard(int original) : descriptor_(openUinput()) {
  libevdev* capabilities = nullptr;
  if (const int error = libevdev_new_from_fd(original, &capabilities); error < 0) {
    throw std::system_error(-error, std::generic_category(), "reading a keyboard");
  }
  const std::unique_ptr<libevdev, decltype(&libevdev_free)> owned(capabilities, libevdev_free);
  libevdev_enable_event_code(capabilities, EV_LED, LED_CAPSL, nullptr);
  const std::string physicalPath = std::string(clonePhysicalPath) + libevdev_get_name(capabilities);
  if (::ioctl(descriptor_.get(), UI_SET_PHYS, physicalPath.c_str()) < 0) {
    throw unusable(errno);
  }
  libevdev_uinput* device = nullptr;
  if (const int error =
          libevdev_uinput_create_from_device(capabilities, descriptor_.get(), &device);
      error < 0) {
    throw unusable(-error);
  }
  device_.reset(device);
}

void UinputKeyboard::requireUinput() {
  openUinput();
}

void UinputKeyboard::write(const std::vector<InputEvent>& events) {
  if (events.empty()) {
    return;
  }
  written_.resize(events.size());
  std::transform(events.begin(), events.end(), written_.begin(), [](const InputEvent& each) {
    return input_event{{}, each.type, each.code, each.value};
  });
  // In one call, so that keys wait for one only.
  const auto size = static_cast<ssize_t>(written_.size() * sizeof(input_event));
  if (::write(descriptor_.get(), written_.data(), static_cast<std::size_t>(size)) != size) {
    throw RequestError("cannot write to its clone" + errnoText(errno));
  }
}

std::vector<InputEvent> UinputKeyboard::takeLedEvents() {
  std::vector<InputEvent> leds;
  std::array<input_event, 16> events;  // As many as the kernel keeps.
  const ssize_t bytes = ::read(descriptor_.get(), events.data(), sizeof events);
  const std::size_t count = bytes < 0 ? 0 : static_cast<std::size_t>(bytes) / sizeof(input_event);
  for (const input_event& event : std::span(events).first(count)) {
    if (event.type == EV_LED) {
      leds.push_back({event.type, event.code, event.value});
    }
  }
  return leds;
}

}  // namespace zephlin
