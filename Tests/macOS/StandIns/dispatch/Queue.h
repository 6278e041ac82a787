#pragma once

#import <dispatch/dispatch.h>

#include <deque>
#include <mutex>

#import "StandIns/CallLog.h"

@interface StandInQueueAttributes : NSObject <OS_dispatch_queue_attr, NSCopying> {
 @public
  qos_class_t _qosClass;
  int _relativePriority;
  dispatch_autorelease_frequency_t _frequency;
}
@end

/// What a dispatch_queue_t points to.
@interface StandInQueue : NSObject <OS_dispatch_queue>
/// Any thread.
- (void)enqueue:(dispatch_block_t)block;
@end

/// Works off its blocks on the main thread in the common modes.
@interface StandInMainQueue : StandInQueue
@end

namespace standins {

struct LiveQueue : Live {
  LiveQueue() : Live("dispatch_queue") {}
};

/// Blocks that wait, and whether a thread works them off.
struct QueueState {
  std::mutex mutex;
  std::deque<dispatch_block_t> blocks;
  bool isWorking = false;
  LiveQueue live;
};

}  // namespace standins

/// Works off its blocks on a thread of its own, which ends when there is no block left.
@interface StandInSerialQueue : StandInQueue {
 @private
  standins::QueueState _state;
}
@end
