#pragma once

#include <libudev.h>

#include <QSocketNotifier>
#include <functional>
#include <memory>

#include "Platform/Linux/Watching/EndableCallback.h"

namespace zephlin {

struct UdevDeleter {
  void operator()(udev* context) const { udev_unref(context); }
  void operator()(udev_device* device) const { udev_device_unref(device); }
  void operator()(udev_enumerate* enumeration) const { udev_enumerate_unref(enumeration); }
  void operator()(udev_monitor* monitor) const { udev_monitor_unref(monitor); }
};
template <typename Object>
using UdevPointer = std::unique_ptr<Object, UdevDeleter>;

/// Calls back for each event of one subsystem and one action (add, bind, …), after udev has applied
/// its rules to the device. The kernel filters by subsystem. Without udev nothing is ever reported.
/// Main thread.
class UdevMonitor {
 public:
  /// The device lives for the duration of the call.
  UdevMonitor(const char* subsystem, const char* action,
              std::function<void(udev_device* device)> callback);

 private:
  void receive();

  const char* action_;
  EndableCallback<udev_device*> callback_;
  UdevPointer<udev> context_;
  UdevPointer<udev_monitor> monitor_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace zephlin
