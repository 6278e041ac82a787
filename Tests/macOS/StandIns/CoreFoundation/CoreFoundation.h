#pragma once

// The part of Core Foundation that Platform/macOS uses, as Apple documents it. Its objects are
// Objective-C objects here as there, so toll-free bridging holds.

#include <stdint.h>

#pragma clang assume_nonnull begin

#ifdef __cplusplus
extern "C" {
#endif

#define CF_RELEASES_ARGUMENT __attribute__((cf_consumed))
#define CF_RETURNS_RETAINED __attribute__((cf_returns_retained))

typedef unsigned long CFTypeID;
typedef signed long CFIndex;
typedef const void* CFTypeRef;
typedef double CFTimeInterval;
typedef CFTimeInterval CFAbsoluteTime;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef struct __CFMachPort* CFMachPortRef;
typedef CFStringRef CFRunLoopMode;

extern const CFAllocatorRef _Null_unspecified kCFAllocatorDefault;
extern const CFRunLoopMode kCFRunLoopDefaultMode;
extern const CFTimeInterval kCFAbsoluteTimeIntervalSince1970;

CFTypeRef CFRetain(CFTypeRef cf);
void CFRelease(CFTypeRef cf);
CFTypeID CFGetTypeID(CFTypeRef cf);
CFTypeID CFBooleanGetTypeID(void);

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);

CFRunLoopRef CFRunLoopGetMain(void);
void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopRemoveSource(CFRunLoopRef rl, CFRunLoopSourceRef source, CFRunLoopMode mode);

CF_RETURNS_RETAINED CFRunLoopSourceRef CFMachPortCreateRunLoopSource(
    CFAllocatorRef _Null_unspecified allocator, CFMachPortRef port, CFIndex order);

#ifdef __cplusplus
}
#endif

#pragma clang assume_nonnull end
