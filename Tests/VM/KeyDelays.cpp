// Measures in the virtual machine how late the keys of three keyboards come, which it makes itself:
// one that is read as it is, one that zephlin-hidd rewrites, and one that goes through
// interception-tools. It waits for a line on its standard input until those are at work.

#include <fcntl.h>
#include <libevdev/libevdev-uinput.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "Tests/Bench/Ratio.h"
#include "Tests/VM/JudgeSeat.h"
#include "Tests/VM/RunProgram.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int ordinaryKeys = 10'000;
constexpr int capsLockTaps = 50;
constexpr auto holdTime = 80ms;

/// Enough for every program to be done with a key and asleep again.
constexpr auto pause = 500us;
constexpr auto longPause = 20ms;

/// A keyboard and the device where programs read what is typed on it. Both last as long as the
/// program.
class Keyboard {
 public:
  explicit Keyboard(const char* name) : name_(name) {
    libevdev* const device = libevdev_new();
    libevdev_set_name(device, name);
    libevdev_set_id_bustype(device, BUS_USB);
    for (unsigned code = KEY_ESC; code < KEY_KPDOT; ++code) {
      libevdev_enable_event_code(device, EV_KEY, code, nullptr);
    }
    libevdev_enable_event_code(device, EV_MSC, MSC_SCAN, nullptr);
    libevdev_enable_event_code(device, EV_LED, LED_CAPSL, nullptr);
    if (libevdev_uinput_create_from_device(device, LIBEVDEV_UINPUT_OPEN_MANAGED, &made_) != 0) {
      throw std::runtime_error("uinput cannot be used");
    }
  }

  /// Opens the device that is named like the keyboard and is another one, or the keyboard itself.
  void openEnd(bool isAnother) {
    for (int number = 0; number < 100; ++number) {
      const std::string path = "/dev/input/event" + std::to_string(number);
      const int descriptor = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
      std::array<char, 100> name{};
      if (::ioctl(descriptor, EVIOCGNAME(name.size() - 1), name.data()) >= 0 &&
          name_ == name.data() && isAnother == (path != libevdev_uinput_get_devnode(made_))) {
        end_ = descriptor;
        return;
      }
      ::close(descriptor);
    }
    throw std::runtime_error("nothing comes from the keyboard " + name_);
  }

  void turn(std::uint16_t code, int value) {
    libevdev_uinput_write_event(made_, EV_MSC, MSC_SCAN, code);
    libevdev_uinput_write_event(made_, EV_KEY, code, value);
    libevdev_uinput_write_event(made_, EV_SYN, SYN_REPORT, 0);
  }

  /// The next key that comes until then; one of type 0 if none does.
  input_event receive(Clock::time_point until) {
    pollfd polled{end_, POLLIN, 0};
    input_event event{};
    for (;;) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
      if (::poll(&polled, 1, std::max(0, static_cast<int>(left))) <= 0) {
        return {};
      }
      if (::read(end_, &event, sizeof event) == sizeof event && event.type == EV_KEY) {
        return event;
      }
    }
  }

  /// Tells the keyboard, as a compositor does, whether the lock is on.
  void setLed(bool lit) {
    std::array<input_event, 2> events{};
    events[0].type = EV_LED;
    events[0].code = LED_CAPSL;
    events[0].value = lit ? 1 : 0;
    events[1].type = EV_SYN;
    if (::write(end_, events.data(), sizeof events) < 0) {
      throw std::runtime_error("no LED on " + name_);
    }
    std::this_thread::sleep_for(longPause);
  }

 private:
  std::string name_;
  libevdev_uinput* made_ = nullptr;
  int end_ = -1;
};

/// From before the keyboard sends a key until a program has it.
double delayOfKey(Keyboard& keyboard, int value) {
  std::this_thread::sleep_for(pause);
  const auto start = Clock::now();
  keyboard.turn(KEY_A, value);
  if (keyboard.receive(start + 10s).value != value) {
    throw std::runtime_error("another key came than the one that was sent");
  }
  return Milliseconds(Clock::now() - start).count();
}

void take(Keyboard& keyboard, Seat& seat, Clock::time_point until) {
  const input_event event = keyboard.receive(until);
  if (event.type == EV_KEY) {
    seat.key(event.code, event.value == 1);
  }
}

/// From the press that switches the lock off until it is off, with the key held for a while.
double delayOfUnlocking(Keyboard& keyboard, Seat& seat) {
  keyboard.turn(KEY_CAPSLOCK, 1);
  take(keyboard, seat, Clock::now() + 10s);
  keyboard.turn(KEY_CAPSLOCK, 0);
  take(keyboard, seat, Clock::now() + 10s);
  keyboard.setLed(true);

  const auto start = Clock::now();
  const auto release = start + holdTime;
  keyboard.turn(KEY_CAPSLOCK, 1);
  while (seat.isLocked() && Clock::now() < release) {
    take(keyboard, seat, release);
  }
  auto unlocked = Clock::now();
  std::this_thread::sleep_until(release);
  keyboard.turn(KEY_CAPSLOCK, 0);
  if (seat.isLocked()) {
    take(keyboard, seat, release + 10s);
    unlocked = Clock::now();
  }
  if (seat.isLocked()) {
    throw std::runtime_error("the lock stays on");
  }
  keyboard.setLed(false);
  return Milliseconds(unlocked - start).count();
}

double quantile(std::vector<double> values, double part) {
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
}

void printQuantiles(const char* name, const std::vector<double>& delays) {
  std::fprintf(stderr, "  %-34s p50 %7.3f ms, p99 %7.3f ms\n", name, quantile(delays, 0.5),
               quantile(delays, 0.99));
}

std::vector<double> difference(std::vector<double> values, const std::vector<double>& others) {
  std::transform(values.begin(), values.end(), others.begin(), values.begin(), std::minus<>());
  return values;
}

void measureKeys(Keyboard& plain, Keyboard& rewritten, Keyboard& piped) {
  std::vector<double> direct;
  std::vector<double> ours;
  std::vector<double> theirs;
  for (int count = 0; count < ordinaryKeys; ++count) {
    const int value = 1 - count % 2;
    direct.push_back(delayOfKey(plain, value));
    ours.push_back(delayOfKey(rewritten, value));
    theirs.push_back(delayOfKey(piped, value));
  }
  std::fprintf(stderr, "An ordinary key, %d events each:\n", ordinaryKeys);
  printQuantiles("from the keyboard itself", direct);
  printQuantiles("through zephlin-hidd", ours);
  printQuantiles("through interception-tools", theirs);
  bench::reportRatio("the whole way, ours to theirs", ours, theirs);
  bench::reportRatio("what is added, ours to theirs", difference(ours, direct),
                     difference(theirs, direct));
  std::fprintf(stderr, "  %-34s %9.3f x\n", "p99, ours to theirs",
               quantile(ours, 0.99) / quantile(theirs, 0.99));
}

void measureUnlocking(Keyboard& plain, Keyboard& rewritten) {
  Seat seat("");
  std::vector<double> direct;
  std::vector<double> ours;
  for (int count = 0; count < capsLockTaps; ++count) {
    direct.push_back(delayOfUnlocking(plain, seat));
    ours.push_back(delayOfUnlocking(rewritten, seat));
  }
  std::fprintf(stderr, "From Caps Lock's press until the lock is off, held 80 ms, %d taps each:\n",
               capsLockTaps);
  printQuantiles("from the keyboard itself", direct);
  printQuantiles("through zephlin-hidd", ours);
}

void measure() {
  silenceConsole();
  Keyboard plain("Plain");
  Keyboard rewritten("Rewritten");
  Keyboard piped("Piped");
  std::cin.get();
  plain.openEnd(false);
  rewritten.openEnd(true);
  piped.openEnd(true);
  measureKeys(plain, rewritten, piped);
  measureUnlocking(plain, rewritten);
}

}  // namespace
}  // namespace zephlin

int main() {
  return zephlin::runProgram(zephlin::measure);
}
