#include "KeyboardService/Service/Evdev/EventNode.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <system_error>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

[[noreturn]] void throwError(int errorNumber, const char* what) {
  throw std::system_error(errorNumber, std::generic_category(), what);
}

int checked(int result, const char* what) {
  if (result < 0) {
    throwError(errno, what);
  }
  return result;
}

[[noreturn]] void throwUnusable(const std::string& path, int errorNumber) {
  switch (errorNumber) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
      throwError(ENODEV, "opening a keyboard");
    case EACCES:
    case EPERM:
      throw RequestError("no permission to open " + path + errnoText(errorNumber) +
                         "; run zephlin-hidd as root or in the group input");
    default:
      throw RequestError("cannot open " + path + errnoText(errorNumber));
  }
}

FileDescriptor openNode(const std::string& path) {
  FileDescriptor descriptor(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  int clock = CLOCK_MONOTONIC;
  if (!descriptor.isOpen() || ::ioctl(descriptor.get(), EVIOCSCLOCKID, &clock) < 0) {
    throwUnusable(path, errno);
  }
  return descriptor;
}

/// The kernel's bitmaps are arrays of unsigned long, whose bytes are in order on little-endian
/// machines.
template <std::size_t Count>
std::bitset<Count> bits(const std::array<unsigned char, Count / 8>& bytes) {
  std::bitset<Count> result;
  for (std::size_t index = 0; index < Count; ++index) {
    result.set(index, (bytes.at(index / 8) >> index % 8 & 1) != 0);
  }
  return result;
}

}  // namespace

std::chrono::microseconds monotonicTime() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec));
}

EventNode::EventNode(const std::string& path) : descriptor_(openNode(path)) {}

void EventNode::letIn(std::uint16_t type, std::initializer_list<std::uint16_t> codes) {
  std::array<unsigned char, KEY_CNT / 8> bytes{};
  for (const std::uint16_t code : codes) {
    bytes.at(code / 8U) |= static_cast<unsigned char>(1U << code % 8U);
  }
  input_mask mask{};
  mask.type = type;
  mask.codes_size = bytes.size();
  mask.codes_ptr = reinterpret_cast<std::uintptr_t>(bytes.data());
  checked(::ioctl(descriptor(), EVIOCSMASK, &mask), "choosing a keyboard's events");
}

void EventNode::write(std::initializer_list<InputEvent> events) {
  std::array<input_event, 16> written{};
  std::size_t count = 0;
  for (const InputEvent& event : events) {
    written.at(count++) = {{}, event.type, event.code, event.value};
  }
  const auto size = static_cast<ssize_t>(count * sizeof(input_event));
  if (::write(descriptor(), written.data(), static_cast<std::size_t>(size)) != size) {
    throwError(errno, "writing to a keyboard");
  }
}

bool EventNode::hearsProbe() {
  bool isHeard = false;
  writeProbe();
  readAll([&](const InputEvent& event, std::chrono::microseconds) {
    isHeard = isHeard || isProbe(event);
  });
  return isHeard;
}

bool EventNode::grab() {
  if (::ioctl(descriptor(), EVIOCGRAB, 1) == 0) {
    return true;
  }
  if (errno != EBUSY) {
    throwError(errno, "grabbing a keyboard");
  }
  return false;
}

void EventNode::ungrab() {
  checked(::ioctl(descriptor(), EVIOCGRAB, 0), "releasing a keyboard");
}

std::bitset<KEY_CNT> EventNode::heldKeys() const {
  std::array<unsigned char, KEY_CNT / 8> bytes{};
  checked(::ioctl(descriptor(), EVIOCGKEY(bytes.size()), bytes.data()), "reading a keyboard");
  return bits<KEY_CNT>(bytes);
}

std::bitset<LED_CNT> EventNode::leds() const {
  std::array<unsigned char, LED_CNT / 8> bytes{};
  checked(::ioctl(descriptor(), EVIOCGLED(bytes.size()), bytes.data()), "reading a keyboard");
  return bits<LED_CNT>(bytes);
}

std::vector<std::int32_t> EventNode::scanCodes(std::uint16_t key) const {
  std::vector<std::int32_t> codes;
  input_keymap_entry entry{};
  entry.flags = INPUT_KEYMAP_BY_INDEX;
  for (; ::ioctl(descriptor(), EVIOCGKEYCODE_V2, &entry) == 0; ++entry.index) {
    if (entry.keycode == key && entry.len == sizeof(std::int32_t)) {
      std::int32_t code = 0;
      std::memcpy(&code, entry.scancode, sizeof code);
      codes.push_back(code);
    }
  }
  return codes;
}

void EventNode::requireUsable() const {
  int version = 0;
  checked(::ioctl(descriptor(), EVIOCGVERSION, &version), "reading a keyboard");
}

std::span<const input_event> EventNode::read() {
  const ssize_t size = ::read(descriptor(), buffer_.data(), sizeof buffer_);
  if (size < 0 && errno != EAGAIN && errno != EINTR) {
    throwError(errno, "reading a keyboard");
  }
  return std::span(buffer_).first(size < 0 ? 0
                                           : static_cast<std::size_t>(size) / sizeof(input_event));
}

std::chrono::microseconds EventNode::timeOf(const input_event& event) {
  return std::chrono::seconds(event.input_event_sec) +
         std::chrono::microseconds(event.input_event_usec);
}

}  // namespace zephlin
