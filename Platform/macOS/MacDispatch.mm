#import "Platform/macOS/MacDispatch.h"

#import <dispatch/dispatch.h>

#include <cmath>
#include <cstdint>
#include <utility>

#import "Platform/macOS/Retained.h"

namespace zephlin {

namespace {

dispatch_time_t deadlineAfter(Seconds delay) {
  return dispatch_time(DISPATCH_TIME_NOW,
                       static_cast<std::int64_t>(std::ceil(delay.count() * NSEC_PER_SEC)));
}

class MacSerialQueue final : public SerialQueue {
 public:
  explicit MacSerialQueue(Retained<dispatch_queue_t> queue) : queue_(std::move(queue)) {}

  void post(std::function<void()> work) override {
    // A block copies what it holds, and a copy of a const function is one that it may call.
    const std::function<void()> posted = std::move(work);
    dispatch_async(queue_.get(), ^{
      posted();
    });
  }

 private:
  Retained<dispatch_queue_t> queue_;
};

class MacTimer final : public Timer {
 public:
  explicit MacTimer(Retained<NSTimer*> timer) : timer_(std::move(timer)) {}
  MacTimer(const MacTimer&) = delete;
  MacTimer& operator=(const MacTimer&) = delete;
  ~MacTimer() override { [timer_.get() invalidate]; }

 private:
  Retained<NSTimer*> timer_;
};

}  // namespace

void MacMainQueue::post(std::function<void()> work) {
  const std::function<void()> posted = std::move(work);
  dispatch_async(dispatch_get_main_queue(), ^{
    posted();
  });
}

void MacMainQueue::postAfter(Seconds delay, std::function<void()> work) {
  const std::function<void()> posted = std::move(work);
  dispatch_after(deadlineAfter(delay), dispatch_get_main_queue(), ^{
    posted();
  });
}

std::unique_ptr<SerialQueue> MacDispatch::makeSerialQueue(const std::string& label) {
  dispatch_queue_attr_t attributes =
      dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, QOS_CLASS_UTILITY, 0);
  attributes = dispatch_queue_attr_make_with_autorelease_frequency(
      attributes, DISPATCH_AUTORELEASE_FREQUENCY_INHERIT);
  return std::make_unique<MacSerialQueue>(Retained<dispatch_queue_t>(
      dispatch_queue_create_with_target(label.c_str(), attributes, DISPATCH_TARGET_QUEUE_DEFAULT)));
}

std::unique_ptr<Timer> MacDispatch::scheduleTimer(Seconds interval, Seconds tolerance,
                                                  std::function<void()> tick) {
  const std::function<void()> ticking = std::move(tick);
  NSTimer* const timer = [NSTimer timerWithTimeInterval:interval.count()
                                                repeats:YES
                                                  block:^(NSTimer* fired) {
                                                    (void)fired;
                                                    // A copy, since the tick may end the timer.
                                                    const std::function<void()> current = ticking;
                                                    current();
                                                  }];
  [timer setTolerance:tolerance.count()];
  [[NSRunLoop mainRunLoop] addTimer:timer forMode:NSRunLoopCommonModes];
  return std::make_unique<MacTimer>(Retained<NSTimer*>::retaining(timer));
}

}  // namespace zephlin
