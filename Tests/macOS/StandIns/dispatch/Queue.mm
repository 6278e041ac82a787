#import "StandIns/dispatch/Queue.h"

#include <condition_variable>
#include <thread>

#import "StandIns/Actions.h"
#import "StandIns/RunLoop.h"

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

namespace standins {

void settle() {
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

}  // namespace standins
