#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>

#include <map>

#import "StandIns/Actions.h"
#import "StandIns/CallLog.h"
#import "StandIns/ReplacedMethod.h"
#import "StandIns/RunLoop.h"

namespace {

std::map<NSTimer*, NSTimeInterval>& tolerances() {
  static std::map<NSTimer*, NSTimeInterval> instance;
  return instance;
}

/// The timers of the common modes that are valid still.
NSMutableArray* commonTimers() {
  static NSMutableArray* const instance = [[NSMutableArray alloc] init];
  for (NSInteger i = static_cast<NSInteger>([instance count]) - 1; i >= 0; --i) {
    if (![[instance objectAtIndex:static_cast<NSUInteger>(i)] isValid]) {
      [instance removeObjectAtIndex:static_cast<NSUInteger>(i)];
    }
  }
  return instance;
}

// GNUstep takes the common modes for one more mode.
const standins::ReplacedMethod<void, NSTimer*, NSString*> addTimer(
    "NSRunLoop", "addTimer:forMode:", [](id self, SEL selector, NSTimer* timer, NSString* mode) {
      if (![mode isEqual:NSRunLoopCommonModes]) {
        addTimer.original(self, selector, timer, mode);
        return;
      }
      standins::record("NSRunLoop addTimer(interval %g, tolerance %g, %s, common modes)",
                       [timer timeInterval], [timer tolerance],
                       self == [NSRunLoop mainRunLoop] ? "main" : "other");
      for (NSString* common in standins::commonModes()) {
        addTimer.original(self, selector, timer, common);
      }
      [commonTimers() addObject:timer];
    });

const standins::ReplacedMethod<void> invalidate("NSTimer", "invalidate", [](id self, SEL selector) {
  if ([self timeInterval] > 0 && [commonTimers() containsObject:self]) {
    standins::record("NSTimer invalidate(interval %g)", [self timeInterval]);
  }
  tolerances().erase(self);
  invalidate.original(self, selector);
  commonTimers();
});

}  // namespace

@implementation NSTimer (StandIn)

- (NSTimeInterval)tolerance {
  return tolerances()[self];
}

- (void)setTolerance:(NSTimeInterval)tolerance {
  tolerances()[self] = tolerance;
}

@end

void standins::fireTimers(double interval) {
  for (NSTimer* timer in [NSArray arrayWithArray:commonTimers()]) {
    if ([timer timeInterval] == interval) {
      [timer fire];
    }
  }
}
