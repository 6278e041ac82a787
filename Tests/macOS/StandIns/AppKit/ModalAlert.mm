#import "StandIns/AppKit/ModalAlert.h"

#import "StandIns/CallLog.h"
#import "StandIns/RunLoop.h"
#import "Support/WakeEventLoop.h"

namespace {

using RunModal = NSInteger (*)(id, SEL);
RunModal originalRunModal = nullptr;
NSAlert* shownAlert = nil;

NSInteger runModal(id self, SEL selector) {
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
  const NSInteger response = originalRunModal(self, selector);
  shownAlert = nil;
  [heartbeat invalidate];
  return response;
}

}  // namespace

@interface StandInModalAlert : NSObject
@end

@implementation StandInModalAlert

+ (void)load {
  originalRunModal = reinterpret_cast<RunModal>(
      standins::replaceMethod("NSAlert", @selector(runModal), reinterpret_cast<IMP>(runModal)));
}

@end

namespace standins {

NSAlert* modalAlert() {
  return shownAlert;
}

}  // namespace standins
