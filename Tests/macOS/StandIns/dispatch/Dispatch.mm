#import <dispatch/dispatch.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#import "StandIns/Actions.h"
#import "StandIns/CallLog.h"
#import "StandIns/RunLoop.h"
#import "StandIns/Time.h"

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

namespace {

/// Blocks that wait, and whether a thread works them off.
struct QueueState {
  std::mutex mutex;
  std::deque<dispatch_block_t> blocks;
  bool isWorking = false;
  standins::LiveQueue live;
};

}  // namespace

/// Works off its blocks on a thread of its own, which ends when there is no block left.
@interface StandInSerialQueue : StandInQueue {
 @private
  QueueState _state;
}
@end

namespace {

/// Work that waits or runs anywhere: `settle` waits for the threads, and drains the main queue.
struct Work {
  std::mutex mutex;
  std::condition_variable changed;
  int workingThreads = 0;
  std::deque<dispatch_block_t> mainBlocks;
};

Work& work() {
  static Work& instance = *new Work;
  return instance;
}

/// The oldest of the blocks, which is retained, or null.
dispatch_block_t takeMainBlock() {
  const std::scoped_lock lock(work().mutex);
  if (work().mainBlocks.empty()) {
    return nil;
  }
  const dispatch_block_t block = work().mainBlocks.front();
  work().mainBlocks.pop_front();
  return block;
}

void runMainBlock() {
  if (const dispatch_block_t block = takeMainBlock()) {
    @autoreleasepool {
      block();
      [block release];
    }
  }
}

}  // namespace

@implementation StandInQueueAttributes

- (id)copyWithZone:(NSZone*)zone {
  (void)zone;
  StandInQueueAttributes* const copied = [[StandInQueueAttributes alloc] init];
  copied->_qosClass = _qosClass;
  copied->_relativePriority = _relativePriority;
  copied->_frequency = _frequency;
  return copied;
}

@end

@implementation StandInQueue

- (void)enqueue:(dispatch_block_t)block {
  (void)block;
}

@end

@implementation StandInMainQueue

- (void)enqueue:(dispatch_block_t)block {
  {
    const std::scoped_lock lock(work().mutex);
    work().mainBlocks.push_back([block copy]);
  }
  standins::postInModes(standins::commonModes(), runMainBlock);
}

@end

@implementation StandInSerialQueue

- (void)enqueue:(dispatch_block_t)block {
  const std::scoped_lock lock(_state.mutex);
  _state.blocks.push_back([block copy]);
  if (_state.isWorking) {
    return;
  }
  _state.isWorking = true;
  {
    const std::scoped_lock workLock(work().mutex);
    ++work().workingThreads;
  }
  [self retain];
  std::thread([self] { [self workOff]; }).detach();
}

- (dispatch_block_t)takeBlock {
  const std::scoped_lock lock(_state.mutex);
  if (_state.blocks.empty()) {
    _state.isWorking = false;
    return nil;
  }
  const dispatch_block_t block = _state.blocks.front();
  _state.blocks.pop_front();
  return block;
}

- (void)workOff {
  GSRegisterCurrentThread();
  while (const dispatch_block_t block = [self takeBlock]) {
    @autoreleasepool {
      block();
      [block release];
    }
  }
  [self release];
  GSUnregisterCurrentThread();
  const std::scoped_lock lock(work().mutex);
  --work().workingThreads;
  work().changed.notify_all();
}

@end

void standins::settle() {
  while (true) {
    {
      std::unique_lock lock(work().mutex);
      work().changed.wait(lock, [] { return work().workingThreads == 0; });
      if (work().mainBlocks.empty()) {
        return;
      }
    }
    runMainBlock();
  }
}

namespace {

StandInQueueAttributes* attributes(dispatch_queue_attr_t attr) {
  return static_cast<StandInQueueAttributes*>(attr);
}

StandInQueue* standIn(dispatch_queue_t queue) {
  return static_cast<StandInQueue*>(queue);
}

}  // namespace

dispatch_queue_t dispatch_get_main_queue(void) {
  static StandInQueue* const queue = [[StandInMainQueue alloc] init];
  return queue;
}

dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t attr,
                                                              dispatch_qos_class_t qos_class,
                                                              int relative_priority) {
  StandInQueueAttributes* const made =
      [attributes(attr) copy] ?: [[StandInQueueAttributes alloc] init];
  made->_qosClass = qos_class;
  made->_relativePriority = relative_priority;
  return [made autorelease];
}

dispatch_queue_attr_t dispatch_queue_attr_make_with_autorelease_frequency(
    dispatch_queue_attr_t attr, dispatch_autorelease_frequency_t frequency) {
  StandInQueueAttributes* const made =
      [attributes(attr) copy] ?: [[StandInQueueAttributes alloc] init];
  made->_frequency = frequency;
  return [made autorelease];
}

dispatch_queue_t dispatch_queue_create_with_target(const char* label, dispatch_queue_attr_t attr,
                                                   dispatch_queue_t target) {
  StandInQueueAttributes* const made = attributes(attr);
  standins::record("dispatch_queue_create_with_target(%s, qos 0x%x %d, frequency %lu, target %s)",
                   label, made->_qosClass, made->_relativePriority, made->_frequency,
                   target == nil ? "default" : "other");
  return [[StandInSerialQueue alloc] init];
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
  if (queue != dispatch_get_main_queue()) {
    standins::record("dispatch_async(serial)");
  }
  [standIn(queue) enqueue:block];
}

dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta) {
  const auto base = when == DISPATCH_TIME_NOW ? standins::monotonicNanoseconds() : when;
  return base + static_cast<std::uint64_t>(delta);
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
  standins::record("dispatch_after(%.3f s, %s)",
                   static_cast<double>(when - standins::monotonicNanoseconds()) / 1e9,
                   queue == dispatch_get_main_queue() ? "main" : "other");
  const dispatch_block_t kept = [[block copy] autorelease];
  standins::scheduleAt(when, [kept = [kept retain]] {
    kept();
    [kept release];
  });
}
