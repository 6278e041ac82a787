#include "Platform/Linux/Watching/EventDevice.h"

#include <fcntl.h>
#include <linux/input.h>
#include <sys/ioctl.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <system_error>

namespace zephlin {

namespace {

constexpr int keyRepetition = 2;

FileDescriptor openForReading(const std::string& path) {
  FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!descriptor.isOpen()) {
    throw std::system_error(errno, std::generic_category(), path);
  }
  return descriptor;
}

void letThrough(int descriptor, unsigned type, unsigned onlyCode) {
  std::array<unsigned char, KEY_CNT / 8> codes{};
  codes[onlyCode / 8] = static_cast<unsigned char>(1U << (onlyCode % 8));
  input_mask mask{};
  mask.type = type;
  mask.codes_size = static_cast<std::uint32_t>(codes.size());
  mask.codes_ptr = reinterpret_cast<std::uintptr_t>(codes.data());
  // Where it fails, takeValues() drops the others.
  ::ioctl(descriptor, EVIOCSMASK, &mask);
}

}  // namespace

EventDevice::EventDevice(const std::string& path, EventKind kind)
    : kind_(kind), descriptor_(openForReading(path)) {
  libevdev* device = nullptr;
  const int error = -libevdev_new_from_fd(descriptor_.get(), &device);
  device_.reset(device);
  if (error != 0 || libevdev_has_event_code(device, kind.type, kind.code) == 0) {
    throw std::system_error(error != 0 ? error : ENOENT, std::generic_category(), path);
  }
  // The codes of EV_SYN stand for the types of events here.
  letThrough(descriptor_.get(), EV_SYN, kind.type);
  letThrough(descriptor_.get(), kind.type, kind.code);
}

std::vector<int> EventDevice::takeValues() {
  std::vector<int> values;
  unsigned flag = LIBEVDEV_READ_FLAG_NORMAL;
  for (;;) {
    input_event event{};
    const int status = libevdev_next_event(device_.get(), flag, &event);
    if (status == -EAGAIN && flag == LIBEVDEV_READ_FLAG_NORMAL) {
      return values;
    }
    if (status < 0 && status != -EAGAIN) {
      throw std::system_error(-status, std::generic_category());
    }
    // Events were lost: what follows is how the state has changed, up to EAGAIN.
    flag =
        status == LIBEVDEV_READ_STATUS_SYNC ? LIBEVDEV_READ_FLAG_SYNC : LIBEVDEV_READ_FLAG_NORMAL;
    if (status >= 0 && event.type == kind_.type && event.code == kind_.code &&
        event.value != keyRepetition) {
      values.push_back(event.value);
    }
  }
}

}  // namespace zephlin
