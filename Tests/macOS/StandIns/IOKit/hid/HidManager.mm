#import <AppKit/AppKit.h>
#import <IOKit/hid/IOHIDKeys.h>
#import <IOKit/hid/IOHIDManager.h>

#include <vector>

#import "StandIns/Actions.h"
#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"
#import "StandIns/RunLoop.h"

struct __IOHIDValue {
  CFIndex integer;
};

/// What an IOHIDManagerRef points to.
@interface StandInHidManager : NSObject {
 @public
  NSDictionary* _deviceMatching;
  NSDictionary* _valueMatching;
  IOHIDValueCallback _callback;
  void* _context;
  BOOL _isScheduled;
  BOOL _isOpen;

 @private
  standins::LiveManager _live;
}
@end

namespace {

/// The managers that exist, not owned.
std::vector<StandInHidManager*>& managers() {
  static std::vector<StandInHidManager*> instance;
  return instance;
}

StandInHidManager* standIn(IOHIDManagerRef manager) {
  return reinterpret_cast<StandInHidManager*>(manager);
}

int number(NSDictionary* dictionary, NSString* key) {
  return [[dictionary objectForKey:key] intValue];
}

std::string pageAndUsage(CFDictionaryRef matching, NSString* pageKey, NSString* usageKey) {
  NSDictionary* const entries = reinterpret_cast<NSDictionary*>(matching);
  return std::to_string([entries count]) + " entries, " + [pageKey UTF8String] + " " +
         std::to_string(number(entries, pageKey)) + ", " + [usageKey UTF8String] + " " +
         std::to_string(number(entries, usageKey));
}

const char* runLoopName(CFRunLoopRef runLoop) {
  return runLoop == CFRunLoopGetMain() ? "main" : "other";
}

bool delivers(const StandInHidManager* manager, int usagePage, int usage) {
  return manager->_isOpen && manager->_isScheduled &&
         number(manager->_deviceMatching, @kIOHIDDeviceUsagePageKey) == 1 &&
         number(manager->_deviceMatching, @kIOHIDDeviceUsageKey) == 6 &&
         number(manager->_valueMatching, @kIOHIDElementUsagePageKey) == usagePage &&
         number(manager->_valueMatching, @kIOHIDElementUsageKey) == usage;
}

}  // namespace

@implementation StandInHidManager

- (void)dealloc {
  standins::record("IOHIDManager released");
  std::erase(managers(), self);
  [_deviceMatching release];
  [_valueMatching release];
  [super dealloc];
}

@end

IOHIDManagerRef IOHIDManagerCreate(CFAllocatorRef allocator, IOOptionBits options) {
  standins::record("IOHIDManagerCreate(%s, %u)", allocator == nullptr ? "default" : "other",
                   options);
  StandInHidManager* const manager = [[StandInHidManager alloc] init];
  managers().push_back(manager);
  return reinterpret_cast<IOHIDManagerRef>(manager);
}

void IOHIDManagerSetDeviceMatching(IOHIDManagerRef manager, CFDictionaryRef matching) {
  standins::record("IOHIDManagerSetDeviceMatching(%s)",
                   pageAndUsage(matching, @"DeviceUsagePage", @"DeviceUsage").c_str());
  standIn(manager)->_deviceMatching = [reinterpret_cast<NSDictionary*>(matching) copy];
}

void IOHIDManagerSetInputValueMatching(IOHIDManagerRef manager, CFDictionaryRef matching) {
  standins::record("IOHIDManagerSetInputValueMatching(%s)",
                   pageAndUsage(matching, @"UsagePage", @"Usage").c_str());
  standIn(manager)->_valueMatching = [reinterpret_cast<NSDictionary*>(matching) copy];
}

void IOHIDManagerRegisterInputValueCallback(IOHIDManagerRef manager, IOHIDValueCallback callback,
                                            void* context) {
  standins::record("IOHIDManagerRegisterInputValueCallback");
  standIn(manager)->_callback = callback;
  standIn(manager)->_context = context;
}

void IOHIDManagerScheduleWithRunLoop(IOHIDManagerRef manager, CFRunLoopRef runLoop,
                                     CFStringRef runLoopMode) {
  standins::record("IOHIDManagerScheduleWithRunLoop(%s, %s)", runLoopName(runLoop),
                   [reinterpret_cast<NSString*>(runLoopMode) UTF8String]);
  standIn(manager)->_isScheduled = YES;
}

void IOHIDManagerUnscheduleFromRunLoop(IOHIDManagerRef manager, CFRunLoopRef runLoop,
                                       CFStringRef runLoopMode) {
  standins::record("IOHIDManagerUnscheduleFromRunLoop(%s, %s)", runLoopName(runLoop),
                   [reinterpret_cast<NSString*>(runLoopMode) UTF8String]);
  standIn(manager)->_isScheduled = NO;
}

IOReturn IOHIDManagerOpen(IOHIDManagerRef manager, IOOptionBits options) {
  standins::record("IOHIDManagerOpen(%u)", options);
  standIn(manager)->_isOpen = standins::knobs().hidOpenResult == kIOReturnSuccess ? YES : NO;
  return standins::knobs().hidOpenResult;
}

IOReturn IOHIDManagerClose(IOHIDManagerRef manager, IOOptionBits options) {
  standins::record("IOHIDManagerClose(%u)", options);
  standIn(manager)->_isOpen = NO;
  return kIOReturnSuccess;
}

CFIndex IOHIDValueGetIntegerValue(IOHIDValueRef value) {
  return value->integer;
}

void standins::reportKey(int usagePage, int usage, long value) {
  performInModes([NSArray arrayWithObject:NSDefaultRunLoopMode], [=] {
    __IOHIDValue reported{value};
    const std::vector<StandInHidManager*> existing = managers();
    for (StandInHidManager* manager : existing) {
      if (delivers(manager, usagePage, usage)) {
        manager->_callback(manager->_context, kIOReturnSuccess, manager, &reported);
      }
    }
  });
}
