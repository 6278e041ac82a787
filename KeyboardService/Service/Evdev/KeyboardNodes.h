#pragma once

#include <libudev.h>

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "KeyboardService/Service/Evdev/KeyboardNode.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

/// Knows the keyboards among the kernel's event devices and reports those that come and go, through
/// libudev: once udev's rules have given them their permissions. Without udev only those are known
/// that there are at the start.
class KeyboardNodes {
 public:
  struct Observer {
    std::function<void(const KeyboardNode& node)> appeared;
    std::function<void(dev_t number)> disappeared;
  };

  /// Throws std::system_error if the system refuses.
  explicit KeyboardNodes(EventLoop& loop);

  /// Reports those that there are within the call, all others from the loop. Called once.
  void start(Observer observer);

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
  Observer observer_;
  std::map<dev_t, std::string> known_;
};

}  // namespace zephlin
