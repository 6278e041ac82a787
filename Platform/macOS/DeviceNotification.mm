// The half of MacHidDevices that tells when devices appear.

#import <IOKit/IOKitLib.h>
#import <dispatch/dispatch.h>

#include <utility>

#import "Platform/macOS/MacHidDevices.h"

namespace zephlin {

namespace {

/// A first-match notification. IOKit holds a plain pointer to this, which is safe because the port
/// that it calls through is destroyed before the memory goes.
class DeviceNotification final : public Observation {
 public:
  explicit DeviceNotification(std::function<void()> callback) : callback_(std::move(callback)) {}
  DeviceNotification(const DeviceNotification&) = delete;
  DeviceNotification& operator=(const DeviceNotification&) = delete;
  ~DeviceNotification() override;

  /// False where IOKit refuses; the notification is then of no use.
  bool arm();

 private:
  static void devicesMatched(void* context, io_iterator_t iterator);
  static void drain(io_iterator_t iterator);

  std::function<void()> callback_;
  IONotificationPortRef port_ = nullptr;
  io_iterator_t iterator_ = IO_OBJECT_NULL;
};

DeviceNotification::~DeviceNotification() {
  if (iterator_ != IO_OBJECT_NULL) {
    IOObjectRelease(iterator_);
  }
  if (port_ != nullptr) {
    IONotificationPortDestroy(port_);
  }
}

bool DeviceNotification::arm() {
  port_ = IONotificationPortCreate(kIOMainPortDefault);
  if (port_ == nullptr) {
    return false;
  }
  IONotificationPortSetDispatchQueue(port_, dispatch_get_main_queue());
  // The call takes over the matching dictionary, also where it fails.
  const kern_return_t result = IOServiceAddMatchingNotification(port_, kIOFirstMatchNotification,
                                                                IOServiceMatching("IOHIDDevice"),
                                                                devicesMatched, this, &iterator_);
  if (result != KERN_SUCCESS) {
    return false;
  }
  drain(iterator_);
  return true;
}

void DeviceNotification::devicesMatched(void* context, io_iterator_t iterator) {
  if (context == nullptr) {
    return;
  }
  drain(iterator);
  // A copy, since the call may end the notification.
  const std::function<void()> callback = static_cast<DeviceNotification*>(context)->callback_;
  callback();
}

// An iterator that is not empty is not armed: IOKit notifies only once it has been read to its end.
void DeviceNotification::drain(io_iterator_t iterator) {
  while (const io_object_t device = IOIteratorNext(iterator)) {
    IOObjectRelease(device);
  }
}

}  // namespace

std::unique_ptr<Observation> MacHidDevices::observeDeviceAppeared(std::function<void()> callback) {
  auto notification = std::make_unique<DeviceNotification>(std::move(callback));
  if (!notification->arm()) {
    return nullptr;
  }
  return notification;
}

}  // namespace zephlin
