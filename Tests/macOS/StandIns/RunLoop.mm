#import "StandIns/RunLoop.h"

#import <AppKit/AppKit.h>

#include <utility>

@interface StandInWork : NSObject {
 @private
  std::function<void()> _work;
}
- (instancetype)initWithWork:(std::function<void()>)work;
- (void)performOnce:(id)argument;
@end

@implementation StandInWork

- (instancetype)initWithWork:(std::function<void()>)work {
  self = [super init];
  if (self != nil) {
    _work = std::move(work);
  }
  return self;
}

// GNUstep fires a timer of several modes again in a nested loop of another mode.
- (void)performOnce:(id)argument {
  (void)argument;
  if (const auto work = std::exchange(_work, nullptr)) {
    work();
  }
}

@end

namespace standins {

NSArray* commonModes() {
  return [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode,
                                   NSEventTrackingRunLoopMode, nil];
}

void performInModes(NSArray* modes, std::function<void()> work) {
  NSString* const mode = [[NSRunLoop mainRunLoop] currentMode];
  if (mode == nil || [modes containsObject:mode]) {
    work();
  } else {
    postInModes(modes, std::move(work));
  }
}

void postInModes(NSArray* modes, std::function<void()> work) {
  if ([NSThread isMainThread]) {
    // GNUstep would perform it at once where the run loop does not run yet.
    postInModesAfter(0, modes, std::move(work));
    return;
  }
  StandInWork* const posted = [[StandInWork alloc] initWithWork:std::move(work)];
  [posted performSelectorOnMainThread:@selector(performOnce:)
                           withObject:nil
                        waitUntilDone:NO
                                modes:modes];
  [posted release];
}

void postInModesAfter(double seconds, NSArray* modes, std::function<void()> work) {
  StandInWork* const posted = [[StandInWork alloc] initWithWork:std::move(work)];
  NSTimer* const timer = [NSTimer timerWithTimeInterval:seconds
                                                 target:posted
                                               selector:@selector(performOnce:)
                                               userInfo:nil
                                                repeats:NO];
  for (NSString* mode in modes) {
    [[NSRunLoop mainRunLoop] addTimer:timer forMode:mode];
  }
  [posted release];
}

}  // namespace standins
