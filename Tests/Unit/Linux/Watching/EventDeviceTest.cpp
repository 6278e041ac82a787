#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "Platform/Linux/Watching/EventDevices.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

/// The state of the one event device.
struct Kernel {
  bool isCapsLockDown = false;
  /// The codes that it lets through, of each type, as set by EVIOCSMASK.
  std::map<unsigned, std::set<unsigned>> masks;
  int clock = CLOCK_REALTIME;
};

Kernel& kernel() {
  static Kernel kernel;
  return kernel;
}

void setMask(const input_mask& mask) {
  const auto* const codes = reinterpret_cast<const unsigned char*>(mask.codes_ptr);
  std::set<unsigned>& letThrough = kernel().masks[mask.type];
  for (unsigned code = 0; code < mask.codes_size * 8; ++code) {
    if ((codes[code / 8] & (1U << (code % 8))) != 0) {
      letThrough.insert(code);
    }
  }
}

/// Answers what libevdev asks: a keyboard whose one key is Caps Lock.
int answer(unsigned long request, void* argument) {
  if (request == EVIOCSMASK) {
    setMask(*static_cast<const input_mask*>(argument));
    return 0;
  }
  if (request == EVIOCSCLOCKID) {
    kernel().clock = *static_cast<const int*>(argument);
    return 0;
  }
  const std::size_t bytes = _IOC_SIZE(request);
  auto* const bits = static_cast<unsigned char*>(argument);
  std::memset(bits, 0, bytes);
  if (request == EVIOCGBIT(0, bytes)) {
    bits[0] = 1U << EV_SYN | 1U << EV_KEY;
  } else if (request == EVIOCGBIT(EV_KEY, bytes) ||
             (request == EVIOCGKEY(bytes) && kernel().isCapsLockDown)) {
    bits[KEY_CAPSLOCK / 8] = 1U << KEY_CAPSLOCK % 8;
  }
  return 0;
}

}  // namespace

/// Replaces the C library's, and passes on what is not asked of event devices.
extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  return _IOC_TYPE(request) == 'E'
             ? answer(request, argument)
             : static_cast<int>(::syscall(SYS_ioctl, descriptor, request, argument));
}

namespace zephlin {
namespace {

constexpr EventKind capsLockKey{EV_KEY, KEY_CAPSLOCK};

class EventDeviceTest : public testing::Test {
 protected:
  void TearDown() override { kernel() = {}; }

  static std::string makeNode(const std::string& path) {
    EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
    return path;
  }

  void send(unsigned type, unsigned code, int value, std::chrono::microseconds time = {}) {
    input_event event{};
    event.input_event_sec = time.count() / 1'000'000;
    event.input_event_usec = time.count() % 1'000'000;
    event.type = static_cast<std::uint16_t>(type);
    event.code = static_cast<std::uint16_t>(code);
    event.value = value;
    EXPECT_EQ(::write(keyboard_.get(), &event, sizeof event), static_cast<ssize_t>(sizeof event));
  }

  test::TemporaryDirectory directory_;
  std::vector<int> takeValues() {
    std::vector<int> values;
    for (const EventValue& each : device_.takeValues()) {
      values.push_back(each.value);
    }
    return values;
  }

  const std::string path_ = makeNode(directory_.file("event0"));
  FileDescriptor keyboard_{::open(path_.c_str(), O_RDWR | O_CLOEXEC)};
  EventDevice device_{path_, capsLockKey};
};

TEST_F(EventDeviceTest, HasTheKernelLetItsOneCodeThroughAndNothingElse) {
  EXPECT_EQ(kernel().masks,
            (std::map<unsigned, std::set<unsigned>>{{EV_SYN, {EV_KEY}}, {EV_KEY, {KEY_CAPSLOCK}}}));
}

TEST_F(EventDeviceTest, HasTheTimesOfTheMonotonicClock) {
  EXPECT_EQ(kernel().clock, CLOCK_MONOTONIC);
  send(EV_KEY, KEY_CAPSLOCK, 1, std::chrono::microseconds(123'456'789));
  send(EV_SYN, SYN_REPORT, 0);
  const std::vector<EventValue> values = device_.takeValues();
  ASSERT_EQ(values.size(), 1U);
  EXPECT_DOUBLE_EQ(values[0].time.count(), 123.456789);
}

TEST_F(EventDeviceTest, AsksForTheStateWhenEventsWereLost) {
  send(EV_KEY, KEY_CAPSLOCK, 1);
  send(EV_SYN, SYN_REPORT, 0);
  EXPECT_EQ(takeValues(), std::vector<int>{1});
  send(EV_SYN, SYN_DROPPED, 0);
  send(EV_SYN, SYN_REPORT, 0);
  EXPECT_EQ(takeValues(), std::vector<int>{0});
  kernel().isCapsLockDown = true;
  send(EV_SYN, SYN_DROPPED, 0);
  send(EV_SYN, SYN_REPORT, 0);
  EXPECT_EQ(takeValues(), std::vector<int>{1});
  send(EV_KEY, KEY_CAPSLOCK, 0);
  send(EV_SYN, SYN_REPORT, 0);
  EXPECT_EQ(takeValues(), std::vector<int>{0});
}

}  // namespace
}  // namespace zephlin
