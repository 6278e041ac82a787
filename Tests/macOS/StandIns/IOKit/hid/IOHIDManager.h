#pragma once

// The part of IOKit's HID manager that Platform/macOS uses, as Apple documents it.

#import <CoreFoundation/CoreFoundation.h>
#import <IOKit/IOKitLib.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct __IOHIDManager* IOHIDManagerRef;
typedef struct __IOHIDValue* IOHIDValueRef;
typedef uint32_t IOOptionBits;
enum { kIOHIDOptionsTypeNone = 0x00, kIOHIDOptionsTypeSeizeDevice = 0x01 };

typedef void (*IOHIDValueCallback)(void* _Nullable context, IOReturn result, void* _Nullable sender,
                                   IOHIDValueRef _Nonnull value);

CF_RETURNS_RETAINED IOHIDManagerRef _Nonnull IOHIDManagerCreate(CFAllocatorRef _Nullable allocator,
                                                                IOOptionBits options);
void IOHIDManagerSetDeviceMatching(IOHIDManagerRef _Nonnull manager,
                                   CFDictionaryRef _Nullable matching);
void IOHIDManagerSetInputValueMatching(IOHIDManagerRef _Nonnull manager,
                                       CFDictionaryRef _Nullable matching);
void IOHIDManagerRegisterInputValueCallback(IOHIDManagerRef _Nonnull manager,
                                            IOHIDValueCallback _Nullable callback,
                                            void* _Nullable context);
void IOHIDManagerScheduleWithRunLoop(IOHIDManagerRef _Nonnull manager,
                                     CFRunLoopRef _Nonnull runLoop,
                                     CFStringRef _Nonnull runLoopMode);
void IOHIDManagerUnscheduleFromRunLoop(IOHIDManagerRef _Nonnull manager,
                                       CFRunLoopRef _Nonnull runLoop,
                                       CFStringRef _Nonnull runLoopMode);
IOReturn IOHIDManagerOpen(IOHIDManagerRef _Nonnull manager, IOOptionBits options);
IOReturn IOHIDManagerClose(IOHIDManagerRef _Nonnull manager, IOOptionBits options);
CFIndex IOHIDValueGetIntegerValue(IOHIDValueRef _Nonnull value);

#ifdef __cplusplus
}
#endif
