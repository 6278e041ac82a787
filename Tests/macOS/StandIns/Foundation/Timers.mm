#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>

#include <map>

#import "StandIns/Actions.h"
#import "StandIns/CallLog.h"
#import "StandIns/RunLoop.h"

namespace {

std::map<NSTimer*, NSTimeInterval>& tolerances() {
  static std::map<NSTimer*, NSTimeInterval> instance;
  return instance;
}

using AddTimer = void (*)(id, SEL, NSTimer*, NSString*);
AddTimer originalAddTimer = nullptr;

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
void addTimer(id self, SEL selector, NSTimer* timer, NSString* mode) {
  if (![mode isEqual:NSRunLoopCommonModes]) {
    originalAddTimer(self, selector, timer, mode);
    return;
  }
  standins::record("NSRunLoop addTimer(interval %g, tolerance %g, %s, common modes)",
                   [timer timeInterval], [timer tolerance],
                   self == [NSRunLoop mainRunLoop] ? "main" : "other");
  for (NSString* common in standins::commonModes()) {
    originalAddTimer(self, selector, timer, common);
  }
  [commonTimers() addObject:timer];
}

using Invalidate = void (*)(id, SEL);
Invalidate originalInvalidate = nullptr;

void invalidate(id self, SEL selector) {
  if ([self timeInterval] > 0 && [commonTimers() containsObject:self]) {
    standins::record("NSTimer invalidate(interval %g)", [self timeInterval]);
  }
  tolerances().erase(self);
  originalInvalidate(self, selector);
  commonTimers();
}

}  // namespace

@implementation NSTimer (StandIn)

- (NSTimeInterval)tolerance {
  return tolerances()[self];
}

- (void)setTolerance:(NSTimeInterval)tolerance {
  tolerances()[self] = tolerance;
}

@end

@interface StandInTimers : NSObject
@end

@implementation StandInTimers

+ (void)load {
  originalAddTimer = reinterpret_cast<AddTimer>(standins::replaceMethod(
      "NSRunLoop", @selector(addTimer:forMode:), reinterpret_cast<IMP>(addTimer)));
  originalInvalidate = reinterpret_cast<Invalidate>(
      standins::replaceMethod("NSTimer", @selector(invalidate), reinterpret_cast<IMP>(invalidate)));
}

@end

namespace standins {

void fireTimers(double interval) {
  for (NSTimer* timer in [NSArray arrayWithArray:commonTimers()]) {
    if ([timer timeInterval] == interval) {
      [timer fire];
    }
  }
}

}  // namespace standins
