// Measures how late keys come that it types itself, on two keyboards that it makes: "Lateness with
// LED", which zephlin-hidd can watch, and "Lateness without LED", which it has to grab. Each line
// of the standard input is a number of seconds to type for, and is answered by a line of figures in
// milliseconds, from sending an event to reading it: for the first keyboard the median and the
// worst of ordinary keys and the median and the worst of Caps Lock's early release, and then the
// same for the other keyboard.

#include <fcntl.h>
#include <libevdev/libevdev-uinput.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Tests/VM/CapsLockLed.h"
#include "Tests/VM/RunProgram.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto pause = 10ms;
constexpr int keysPerRelease = 10;

/// Ahead of everything else, so that only what is on the key's way makes it late.
void runAheadOfAll() {
  sched_param parameters{};
  parameters.sched_priority = 50;
  if (::sched_setscheduler(0, SCHED_FIFO, &parameters) != 0) {
    throw std::runtime_error("start it as root");
  }
}

class Keyboard {
 public:
  Keyboard(const char* name, bool hasLed) : name_(name) {
    const std::unique_ptr<libevdev, void (*)(libevdev*)> device(libevdev_new(), libevdev_free);
    libevdev_set_name(device.get(), name);
    for (unsigned code = KEY_ESC; code < KEY_KPDOT; ++code) {
      libevdev_enable_event_code(device.get(), EV_KEY, code, nullptr);
    }
    if (hasLed) {
      libevdev_enable_event_code(device.get(), EV_LED, LED_CAPSL, nullptr);
    }
    libevdev_uinput* made = nullptr;
    if (libevdev_uinput_create_from_device(device.get(), LIBEVDEV_UINPUT_OPEN_MANAGED, &made) !=
        0) {
      throw std::runtime_error("uinput cannot be used");
    }
    made_.reset(made);
  }

  /// Opens the node that programs read: the clone's if there is one, which is the newer one.
  void open() {
    for (int number = 0; number < 100; ++number) {
      FileDescriptor node(::open(("/dev/input/event" + std::to_string(number)).c_str(),
                                 O_RDWR | O_NONBLOCK | O_CLOEXEC));
      std::array<char, 100> name{};
      if (::ioctl(node.get(), EVIOCGNAME(name.size() - 1), name.data()) >= 0 &&
          name_ == name.data()) {
        node_ = std::move(node);
      }
    }
  }

  void measureKey() {
    keys_.push_back(delayOf(KEY_A, 1, 1));
    std::this_thread::sleep_for(pause);
    keys_.push_back(delayOf(KEY_A, 0, 0));
    std::this_thread::sleep_for(pause);
  }

  void measureRelease() {
    setLed(true);
    releases_.push_back(delayOf(KEY_CAPSLOCK, 1, 0));
    turn(KEY_CAPSLOCK, 0);
    setLed(false);
  }

  void report() {
    for (std::vector<double>* const delays : {&keys_, &releases_}) {
      std::sort(delays->begin(), delays->end());
      std::cout << delays->at(delays->size() / 2) << ' ' << delays->back() << ' ';
      delays->clear();
    }
  }

 private:
  void turn(unsigned code, int value) {
    libevdev_uinput_write_event(made_.get(), EV_KEY, code, value);
    libevdev_uinput_write_event(made_.get(), EV_SYN, SYN_REPORT, 0);
  }

  /// From sending a key's event until another value of it, or the same, has come.
  double delayOf(unsigned code, int sent, int expected) {
    const auto start = Clock::now();
    turn(code, sent);
    pollfd polled{node_.get(), POLLIN, 0};
    input_event event{};
    while (::poll(&polled, 1, 5000) == 1 &&
           ::read(node_.get(), &event, sizeof event) == sizeof event) {
      if (event.type == EV_KEY && event.code == code && event.value == expected) {
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
      }
    }
    throw std::runtime_error("a key does not come from " + name_);
  }

  void setLed(bool lit) {
    if (!setCapsLockLed(node_.get(), lit)) {
      throw std::runtime_error("no LED on " + name_);
    }
    std::this_thread::sleep_for(pause);
  }

  std::string name_;
  std::unique_ptr<libevdev_uinput, void (*)(libevdev_uinput*)> made_{nullptr,
                                                                     libevdev_uinput_destroy};
  FileDescriptor node_;
  std::vector<double> keys_;
  std::vector<double> releases_;
};

void measure() {
  runAheadOfAll();
  std::array<Keyboard, 2> keyboards{Keyboard("Lateness with LED", true),
                                    Keyboard("Lateness without LED", false)};
  std::cout << "made" << std::endl;
  int seconds = 0;
  while (std::cin >> seconds) {
    for (Keyboard& keyboard : keyboards) {
      keyboard.open();
    }
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    for (int count = 1; Clock::now() < end; ++count) {
      for (Keyboard& keyboard : keyboards) {
        count % keysPerRelease == 0 ? keyboard.measureRelease() : keyboard.measureKey();
      }
    }
    for (Keyboard& keyboard : keyboards) {
      keyboard.report();
    }
    std::cout << std::endl;
  }
}

}  // namespace
}  // namespace zephlin

int main() {
  return zephlin::runProgram(zephlin::measure);
}
