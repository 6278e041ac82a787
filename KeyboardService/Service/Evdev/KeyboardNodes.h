#pragma once

#include <libudev.h>
#include <sys/types.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "KeyboardService/Protocol/Keyboard.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

/// An event device of the kernel that is a keyboard, as udev knows it. It is not opened for that.
struct KeyboardNode {
  dev_t number = 0;
  std::string systemPath;  ///< In /sys; another device with the same number has another one.
  std::string path;        ///< In /dev.
  KeyboardDescription description;
};

/// The physical path of all clones begins like this, so that none is taken for a keyboard.
constexpr std::string_view clonePhysicalPath = "zephlin-hidd/";

/// Whether the bitmap of key codes, as sysfs prints it (words in hexadecimal, the highest first),
/// has Caps Lock and all letters. Buttons and remote controls are keyboards for the kernel too.
bool hasCapsLockAndLetters(std::string_view keyBitmap);

/// The name of a bus of linux/input.h, or "Other".
std::string busName(unsigned bus);

/// Knows the keyboards among the kernel's event devices and reports those that come and go, through
/// libudev: once udev's rules have given them their permissions. Without udev only the keyboards
/// that are present at the start are known.
class KeyboardNodes {
 public:
  /// Throws std::system_error if the system refuses.
  explicit KeyboardNodes(EventLoop& loop);

  /// Reports the keyboards that are present within the call, later ones from the loop. Called once.
  void start(std::function<void(const KeyboardNode& node)> appeared,
             std::function<void(dev_t number)> disappeared);

 private:
  struct Release {
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_monitor* monitor) const { udev_monitor_unref(monitor); }
    void operator()(udev_enumerate* list) const { udev_enumerate_unref(list); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
  };
  template <typename Object>
  using Owned = std::unique_ptr<Object, Release>;

  void receive();
  void add(udev_device* device);
  void remove(dev_t number);

  Owned<udev> context_;
  Owned<udev_monitor> monitor_;
  EventSource watch_;
  std::function<void(const KeyboardNode& node)> appeared_;
  std::function<void(dev_t number)> disappeared_;
  std::map<dev_t, std::string> known_;
};

}  // namespace zephlin
