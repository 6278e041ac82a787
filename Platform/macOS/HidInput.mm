// The half of MacHidDevices that delivers a device's values.

#import <Foundation/Foundation.h>
#import <IOKit/hid/IOHIDKeys.h>
#import <IOKit/hid/IOHIDManager.h>

#include <utility>

#import "Platform/macOS/MacHidDevices.h"
#import "Platform/macOS/Retained.h"

namespace zephlin {

namespace {

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
  explicit HidInput(std::function<void(bool isDown)> callback) : callback_(std::move(callback)) {}
  HidInput(const HidInput&) = delete;
  HidInput& operator=(const HidInput&) = delete;
  ~HidInput() override;

  IOReturn open();

 private:
  static void valueArrived(void* context, IOReturn result, void* sender, IOHIDValueRef value);
  void unschedule();

  std::function<void(bool isDown)> callback_;
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
  callback(IOHIDValueGetIntegerValue(value) != 0);
}

}  // namespace

std::variant<std::unique_ptr<Observation>, std::int32_t> MacHidDevices::openCapsLockKey(
    std::function<void(bool isDown)> callback) {
  auto input = std::make_unique<HidInput>(std::move(callback));
  if (const IOReturn result = input->open(); result != kIOReturnSuccess) {
    return result;
  }
  return input;
}

}  // namespace zephlin
