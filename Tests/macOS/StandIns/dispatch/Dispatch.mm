#import <dispatch/dispatch.h>

#import "StandIns/CallLog.h"
#import "StandIns/RunLoop.h"
#import "StandIns/Time.h"
#import "StandIns/dispatch/Queue.h"

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
