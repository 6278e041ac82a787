#import "StandIns/AppKit/Shown.h"
#import "StandIns/CallLog.h"
#import "StandIns/ReplacedMethod.h"
#import "Support/WakeEventLoop.h"

namespace {

NSAlert* shownAlert = nil;

const standins::ReplacedMethod<NSInteger> runModal(
    "NSAlert", "runModal", [](id self, SEL selector) -> NSInteger {
      standins::record("NSAlert runModal(style %lu, %lu buttons)",
                       static_cast<unsigned long>([self alertStyle]),
                       static_cast<unsigned long>([[self buttons] count]));
      // GNUstep's modal loop sleeps on in spite of an event that one of its timers has posted.
      NSTimer* const heartbeat = [NSTimer timerWithTimeInterval:0.02
                                                        repeats:YES
                                                          block:^(NSTimer* fired) {
                                                            (void)fired;
                                                            wakeAppKitsEventLoop();
                                                          }];
      [[NSRunLoop mainRunLoop] addTimer:heartbeat forMode:NSModalPanelRunLoopMode];
      shownAlert = self;
      const NSInteger response = runModal.original(self, selector);
      shownAlert = nil;
      [heartbeat invalidate];
      return response;
    });

}  // namespace

NSAlert* standins::modalAlert() {
  return shownAlert;
}
