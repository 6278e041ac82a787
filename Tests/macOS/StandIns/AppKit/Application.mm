#import <AppKit/AppKit.h>

#include <functional>
#include <utility>

#import "StandIns/Actions.h"
#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"
#import "StandIns/ReplacedMethod.h"
#import "StandIns/RunLoop.h"
#import "Support/WakeEventLoop.h"

namespace {

using standins::ReplacedMethod;

bool isActive = false;
bool isTerminating = false;
bool hasLaunched = false;
std::function<void()> workAfterLaunching;

const ReplacedMethod<BOOL> answerIsActive("NSApplication", "isActive",
                                          [](id, SEL) -> BOOL { return isActive ? YES : NO; });

// GNUstep's would show the main menu, which an accessory does not have on the screen.
const ReplacedMethod<void, BOOL> activate(
    "NSApplication", "activateIgnoringOtherApps:", [](id, SEL, BOOL ignoringOthers) {
      standins::record("NSApplication activateIgnoringOtherApps:%d", ignoringOthers);
      isActive = true;
    });

// GNUstep's gives the submenu the item's title.
const ReplacedMethod<void, NSMenu*> setSubmenu("NSMenuItem", "setSubmenu:",
                                               [](id self, SEL selector, NSMenu* menu) {
                                                 NSString* const title =
                                                     [[[menu title] copy] autorelease];
                                                 setSubmenu.original(self, selector, menu);
                                                 [menu setTitle:title];
                                               });

void stopSoon() {
  [NSApp stop:nil];
  wakeAppKitsEventLoop();
}

// GNUstep's loop may run for a while inside the delegate's callback.
void observeLaunching() {
  static const ReplacedMethod<void, NSNotification*> didFinishLaunching(
      "ZephlinApplicationDelegate",
      "applicationDidFinishLaunching:", [](id self, SEL selector, NSNotification* notification) {
        didFinishLaunching.original(self, selector, notification);
        hasLaunched = true;
        if (auto work = std::exchange(workAfterLaunching, nullptr)) {
          standins::postInModes(standins::commonModes(), std::move(work));
        }
      });
}

void launchAgain() {
  [[NSNotificationCenter defaultCenter]
      postNotificationName:NSApplicationDidFinishLaunchingNotification
                    object:NSApp];
}

// An application launches once; here the notification is posted again for each later run.
// GNUstep forgets a stop that comes before its loop has begun, and takes note of one only when an
// event comes.
const ReplacedMethod<void> run("NSApplication", "run", [](id self, SEL selector) {
  observeLaunching();
  if (hasLaunched) {
    standins::postInModes(standins::commonModes(), launchAgain);
  }
  isTerminating = false;
  NSTimer* const heartbeat = [NSTimer timerWithTimeInterval:0.02
                                                    repeats:YES
                                                      block:^(NSTimer* fired) {
                                                        (void)fired;
                                                        if (isTerminating) {
                                                          stopSoon();
                                                        }
                                                      }];
  [[NSRunLoop mainRunLoop] addTimer:heartbeat forMode:NSDefaultRunLoopMode];
  run.original(self, selector);
  [heartbeat invalidate];
});

const ReplacedMethod<void, id> terminate("NSApplication",
                                         "terminate:", [](id self, SEL selector, id sender) {
                                           standins::record("NSApplication terminate:%s",
                                                            sender == nil ? "nil" : "sender");
                                           if (standins::knobs().terminateReturns) {
                                             isTerminating = true;
                                             stopSoon();
                                           } else {
                                             terminate.original(self, selector, sender);
                                           }
                                         });

const ReplacedMethod<void, NSMenu*> setMainMenu(
    "NSApplication", "setMainMenu:", [](id self, SEL selector, NSMenu* menu) {
      standins::record("NSApplication setMainMenu:%s", menu == nil ? "nil" : "menu");
      setMainMenu.original(self, selector, menu);
    });

const ReplacedMethod<void, id> setDelegate("NSApplication",
                                           "setDelegate:", [](id self, SEL selector, id delegate) {
                                             standins::record("NSApplication setDelegate:%s",
                                                              delegate == nil ? "nil" : "delegate");
                                             setDelegate.original(self, selector, delegate);
                                           });

}  // namespace

@implementation NSApplication (StandIn)

- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy {
  standins::record("NSApplication setActivationPolicy:%ld", static_cast<long>(activationPolicy));
  return YES;
}

@end

void standins::whenLaunched(std::function<void()> work) {
  workAfterLaunching = std::move(work);
}
