#pragma once

#include <fcntl.h>
#include <linux/input.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include "Base/FileDescriptor.h"
#include "Tests/VM/Bench/HidKeyboard.h"
#include "Tests/VM/CapsLockLed.h"

namespace zephlin {

using namespace std::chrono_literals;

/// Reads keys from an event device, as a compositor does.
class KeyReader {
 public:
  using Clock = HidKeyboard::Clock;

  explicit KeyReader(const std::string& path)
      : device_(::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK)) {
    if (!device_.isOpen()) {
      throw std::runtime_error("cannot open " + path);
    }
  }

  /// The next key that comes until then, if one does. Repetitions don't count.
  std::optional<input_event> receive(Clock::time_point until) {
    for (;;) {
      while (next_ < count_) {
        const input_event& event = events_.at(next_++);
        if (event.type == EV_KEY && event.value != 2) {
          return event;
        }
      }
      const auto left = std::max(until - Clock::now(), Clock::duration::zero());
      const timespec timeout{left / 1s, left % 1s / 1ns};
      pollfd polled{device_.get(), POLLIN, 0};
      if (::ppoll(&polled, 1, &timeout, nullptr) <= 0) {
        return std::nullopt;
      }
      const ssize_t size = ::read(device_.get(), events_.data(), sizeof events_);
      if (size <= 0) {
        throw std::runtime_error("the device where keys were read has gone");
      }
      next_ = 0;
      count_ = static_cast<std::size_t>(size) / sizeof(input_event);
    }
  }

  void setLed(bool lit) {
    if (!setCapsLockLed(device_.get(), lit)) {
      throw std::runtime_error("the LED cannot be set");
    }
    std::this_thread::sleep_for(timeForLed);
  }

  enum class Kind { Keyboard, Clone };

  /// The path of the measured keyboard, or of the clone that passes its keys on, if there is one.
  static std::optional<std::string> find(Kind kind) {
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/input")) {
      const std::string node = entry.path().filename();
      const std::string place = std::filesystem::read_symlink(entry.path());
      const char* const home = kind == Kind::Clone ? "/virtual/input/" : "/uhid/";
      const std::string path = "/dev/input/" + node;
      if (node.starts_with("event") && place.find(home) != std::string::npos && hasLetters(path)) {
        return path;
      }
    }
    return std::nullopt;
  }

 private:
  static constexpr auto timeForLed = 20ms;

  static bool hasLetters(const std::string& path) {
    const FileDescriptor device(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    std::array<unsigned char, KEY_CNT / 8> keys{};
    return ::ioctl(device.get(), EVIOCGBIT(EV_KEY, keys.size()), keys.data()) >= 0 &&
           (keys[KEY_A / 8] >> KEY_A % 8 & 1) != 0;
  }

  FileDescriptor device_;
  std::array<input_event, 64> events_{};
  std::size_t next_ = 0;
  std::size_t count_ = 0;
};

}  // namespace zephlin
