#pragma once

// The part of Grand Central Dispatch that Platform/macOS uses, as Apple documents it. Queues are
// Objective-C objects.

#import <Foundation/Foundation.h>
#include <stdint.h>

#pragma clang assume_nonnull begin

@protocol OS_dispatch_queue <NSObject>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
@protocol OS_dispatch_queue_attr <NSObject>
@end
typedef NSObject<OS_dispatch_queue_attr>* dispatch_queue_attr_t;

typedef void (^dispatch_block_t)(void);
typedef uint64_t dispatch_time_t;

typedef enum : unsigned int {
  QOS_CLASS_USER_INTERACTIVE = 0x21,
  QOS_CLASS_USER_INITIATED = 0x19,
  QOS_CLASS_DEFAULT = 0x15,
  QOS_CLASS_UTILITY = 0x11,
  QOS_CLASS_BACKGROUND = 0x09,
  QOS_CLASS_UNSPECIFIED = 0x00,
} qos_class_t;
typedef qos_class_t dispatch_qos_class_t;

typedef enum : unsigned long {
  DISPATCH_AUTORELEASE_FREQUENCY_INHERIT = 0,
  DISPATCH_AUTORELEASE_FREQUENCY_WORK_ITEM = 1,
  DISPATCH_AUTORELEASE_FREQUENCY_NEVER = 2,
} dispatch_autorelease_frequency_t;

#define DISPATCH_QUEUE_SERIAL NULL
#define DISPATCH_TARGET_QUEUE_DEFAULT NULL
#define DISPATCH_TIME_NOW (0ull)
#define NSEC_PER_SEC 1000000000ull

#ifdef __cplusplus
extern "C" {
#endif

dispatch_queue_t dispatch_get_main_queue(void);
dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t _Nullable attr,
                                                              dispatch_qos_class_t qos_class,
                                                              int relative_priority);
dispatch_queue_attr_t dispatch_queue_attr_make_with_autorelease_frequency(
    dispatch_queue_attr_t _Nullable attr, dispatch_autorelease_frequency_t frequency);
dispatch_queue_t dispatch_queue_create_with_target(const char* _Nullable label,
                                                   dispatch_queue_attr_t _Nullable attr,
                                                   dispatch_queue_t _Nullable target);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);

#ifdef __cplusplus
}
#endif

#pragma clang assume_nonnull end
