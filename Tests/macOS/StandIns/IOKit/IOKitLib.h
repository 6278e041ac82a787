#pragma once

// The part of IOKit's registry that Platform/macOS uses, as Apple documents it.

#import <CoreFoundation/CoreFoundation.h>
#import <dispatch/dispatch.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int kern_return_t;
typedef kern_return_t IOReturn;
typedef unsigned int mach_port_t;
typedef mach_port_t io_object_t;
typedef io_object_t io_iterator_t;
typedef char io_name_t[128];
typedef struct IONotificationPort* IONotificationPortRef;
typedef void (*IOServiceMatchingCallback)(void* refcon, io_iterator_t iterator);

#define KERN_SUCCESS 0
#define kIOReturnSuccess KERN_SUCCESS
#define kIOReturnNotPermitted ((IOReturn)0xe00002e2)
#define IO_OBJECT_NULL ((io_object_t)0)
#define kIOMatchedNotification "IOServiceMatched"
#define kIOFirstMatchNotification "IOServiceFirstMatch"

extern const mach_port_t kIOMainPortDefault;

IONotificationPortRef IONotificationPortCreate(mach_port_t mainPort);
void IONotificationPortDestroy(IONotificationPortRef notify);
void IONotificationPortSetDispatchQueue(IONotificationPortRef notify, dispatch_queue_t queue);

CF_RETURNS_RETAINED CFMutableDictionaryRef IOServiceMatching(const char* name);
kern_return_t IOServiceAddMatchingNotification(IONotificationPortRef notifyPort,
                                               const io_name_t notificationType,
                                               CFDictionaryRef CF_RELEASES_ARGUMENT matching,
                                               IOServiceMatchingCallback callback, void* refCon,
                                               io_iterator_t* notification);
io_object_t IOIteratorNext(io_iterator_t iterator);
kern_return_t IOObjectRelease(io_object_t object);

#ifdef __cplusplus
}
#endif
