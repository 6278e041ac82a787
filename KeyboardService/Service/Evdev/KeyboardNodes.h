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

/// An event device of the kernel that is a keyboard, as udev describes it. It is not opened.
struct KeyboardNode {
  dev_t number = 0;
  std::string systemPath;  ///< In /sys; differs from that of a later device with the same number.
  std::string path;        ///< In /dev.
  bool hasCapsLockLed = false;
  bool repeatsInHardware = false;  ///< A key that is held is sent again and again, as on PS/2.
  KeyboardDescription description;
};

/// Marks our clones, by the start of their physical path, so that none is taken for a keyboard.
constexpr std::string_view clonePhysicalPath = "zephlin-hidd/";

/// Whether the bitmap of key codes, as sysfs prints it (words in hexadecimal, the highest first),
/// has Caps Lock and all letters. For the kernel, buttons and remote controls are keyboards too.
bool hasCapsLockAndLetters(std::string_view keyBitmap);

/// Whether the bitmap of LEDs has that of Caps Lock.
bool hasCapsLockLed(std::string_view ledBitmap);

/// The name of a bus of linux/input.h, or "Other".
std::string busName(unsigned bus);

/// Finds the keyboards among the kernel's event devices and reports those that come and go, through
/// libudev, after udev's rules have set their permissions. One that moves to another seat goes and
/// comes. Without udev only the keyboards that are present at the start are known.
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

  struct Identity {
    std::string systemPath;
    std::string seat;
    bool operator==(const Identity&) const = default;
  };

  void receive();
  void add(udev_device* device);
  void remove(dev_t number);

  Owned<udev> context_;
  Owned<udev_monitor> monitor_;
  EventSource watch_;
  std::function<void(const KeyboardNode& node)> appeared_;
  std::function<void(dev_t number)> disappeared_;
  std::map<dev_t, Identity> known_;
};

}  // namespace zephlin
