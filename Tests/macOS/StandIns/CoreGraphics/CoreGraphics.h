#pragma once

// The part of Quartz that Platform/macOS uses, as Apple documents it: event taps, and colours by
// name alone.

#import <CoreFoundation/CoreFoundation.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct CGColor* CGColorRef;

typedef enum CGEventTapLocation : uint32_t {
  kCGHIDEventTap = 0,
  kCGSessionEventTap,
  kCGAnnotatedSessionEventTap
} CGEventTapLocation;

typedef enum CGEventTapPlacement : uint32_t {
  kCGHeadInsertEventTap = 0,
  kCGTailAppendEventTap
} CGEventTapPlacement;

typedef enum CGEventTapOptions : uint32_t {
  kCGEventTapOptionDefault = 0x00000000,
  kCGEventTapOptionListenOnly = 0x00000001
} CGEventTapOptions;

typedef enum CGEventType : uint32_t {
  kCGEventNull = 0,
  kCGEventKeyDown = 10,
  kCGEventKeyUp = 11,
  kCGEventFlagsChanged = 12,
  kCGEventTapDisabledByTimeout = 0xFFFFFFFE,
  kCGEventTapDisabledByUserInput = 0xFFFFFFFF
} CGEventType;

typedef enum CGEventFlags : uint64_t {
  kCGEventFlagMaskAlphaShift = 0x00010000,
  kCGEventFlagMaskShift = 0x00020000,
  kCGEventFlagMaskControl = 0x00040000,
  kCGEventFlagMaskAlternate = 0x00080000,
  kCGEventFlagMaskCommand = 0x00100000
} CGEventFlags;

typedef uint64_t CGEventMask;
typedef struct __CGEvent* CGEventRef;
typedef struct __CGEventTapProxy* CGEventTapProxy;
typedef CGEventRef _Nullable (*CGEventTapCallBack)(CGEventTapProxy _Nonnull proxy, CGEventType type,
                                                   CGEventRef _Nonnull event,
                                                   void* _Nullable userInfo);

CF_RETURNS_RETAINED CFMachPortRef _Nullable CGEventTapCreate(
    CGEventTapLocation tap, CGEventTapPlacement place, CGEventTapOptions options,
    CGEventMask eventsOfInterest, CGEventTapCallBack _Nonnull callback, void* _Nullable userInfo);
void CGEventTapEnable(CFMachPortRef _Nonnull tap, bool enable);
CGEventFlags CGEventGetFlags(CGEventRef _Nullable event);

#ifdef __cplusplus
}
#endif
