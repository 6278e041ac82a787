#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>
#import <IOKit/hid/IOHIDKeys.h>
#import <IOKit/hid/IOHIDManager.h>
#import <dispatch/dispatch.h>

#include <utility>

#import "Platform/macOS/MacKeyboard.h"
#import "Platform/macOS/MacServices.h"
#import "Platform/macOS/Retained.h"

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

  /// False if IOKit refuses; the notification then never calls.
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
  // The call consumes the matching dictionary, even if it fails.
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

// HID Usage Tables. The window of the tap test promises that only this key is watched.
constexpr int genericDesktopPage = 1;
constexpr int keyboardUsage = 6;
constexpr int keyboardPage = 7;
constexpr int capsLockUsage = 0x39;

/// Two entries of integers, autoreleased.
CFDictionaryRef matchingDictionary(NSString* pageKey, int page, NSString* usageKey, int usage) {
  return reinterpret_cast<CFDictionaryRef>(
      [NSDictionary dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:page], pageKey,
                                                 [NSNumber numberWithInt:usage], usageKey, nil]);
}

/// A HID manager. It holds a plain pointer to this, and calls only while it is scheduled.
class HidInput final : public Observation {
 public:
  explicit HidInput(std::function<void(const KeyEvent&)> callback)
      : callback_(std::move(callback)) {}
  HidInput(const HidInput&) = delete;
  HidInput& operator=(const HidInput&) = delete;
  ~HidInput() override;

  IOReturn open();

 private:
  static void valueArrived(void* context, IOReturn result, void* sender, IOHIDValueRef value);
  void unschedule();

  std::function<void(const KeyEvent&)> callback_;
  Retained<IOHIDManagerRef> manager_;
  bool isOpen_ = false;
};

HidInput::~HidInput() {
  if (isOpen_) {
    unschedule();
    IOHIDManagerClose(manager_.get(), kIOHIDOptionsTypeNone);
  }
}

IOReturn HidInput::open() {
  manager_ =
      Retained<IOHIDManagerRef>(IOHIDManagerCreate(kCFAllocatorDefault, kIOHIDOptionsTypeNone));
  IOHIDManagerSetDeviceMatching(manager_.get(),
                                matchingDictionary(@kIOHIDDeviceUsagePageKey, genericDesktopPage,
                                                   @kIOHIDDeviceUsageKey, keyboardUsage));
  IOHIDManagerSetInputValueMatching(manager_.get(),
                                    matchingDictionary(@kIOHIDElementUsagePageKey, keyboardPage,
                                                       @kIOHIDElementUsageKey, capsLockUsage));
  IOHIDManagerRegisterInputValueCallback(manager_.get(), valueArrived, this);
  IOHIDManagerScheduleWithRunLoop(manager_.get(), CFRunLoopGetMain(), kCFRunLoopDefaultMode);
  const IOReturn result = IOHIDManagerOpen(manager_.get(), kIOHIDOptionsTypeNone);
  isOpen_ = result == kIOReturnSuccess;
  if (!isOpen_) {
    unschedule();
  }
  return result;
}

void HidInput::unschedule() {
  IOHIDManagerUnscheduleFromRunLoop(manager_.get(), CFRunLoopGetMain(), kCFRunLoopDefaultMode);
}

void HidInput::valueArrived(void* context, IOReturn result, void* sender, IOHIDValueRef value) {
  (void)result;
  (void)sender;
  if (context == nullptr) {
    return;
  }
  // A copy, since the call may end the observation.
  const auto callback = static_cast<HidInput*>(context)->callback_;
  callback({IOHIDValueGetIntegerValue(value) != 0, MacClock().now().time_since_epoch()});
}

}  // namespace

std::unique_ptr<Observation> MacHidDevices::observeDeviceAppeared(std::function<void()> callback) {
  auto notification = std::make_unique<DeviceNotification>(std::move(callback));
  if (!notification->arm()) {
    return nullptr;
  }
  return notification;
}

std::variant<std::unique_ptr<Observation>, std::int32_t> MacHidDevices::openCapsLockKey(
    std::function<void(const KeyEvent&)> callback) {
  auto input = std::make_unique<HidInput>(std::move(callback));
  if (const IOReturn result = input->open(); result != kIOReturnSuccess) {
    return result;
  }
  return input;
}

}  // namespace zephlin
