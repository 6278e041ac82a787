#import <AppKit/AppKit.h>

#include <functional>
#include <utility>

#import "StandIns/Actions.h"
#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"
#import "StandIns/RunLoop.h"
#import "Support/WakeEventLoop.h"

namespace {

using Run = void (*)(id, SEL);
Run originalRun = nullptr;
using Terminate = void (*)(id, SEL, id);
Terminate originalTerminate = nullptr;
using SetMainMenu = void (*)(id, SEL, NSMenu*);
SetMainMenu originalSetMainMenu = nullptr;
using SetDelegate = void (*)(id, SEL, id);
SetDelegate originalSetDelegate = nullptr;

bool isActive = false;

BOOL answerIsActive(id self, SEL selector) {
  (void)self;
  (void)selector;
  return isActive ? YES : NO;
}

// GNUstep's would show the main menu, which an accessory does not have on the screen.
void activate(id self, SEL selector, BOOL ignoringOthers) {
  (void)self;
  (void)selector;
  standins::record("NSApplication activateIgnoringOtherApps:%d", ignoringOthers);
  isActive = true;
}

using SetSubmenu = void (*)(id, SEL, NSMenu*);
SetSubmenu originalSetSubmenu = nullptr;

// GNUstep's gives the submenu the item's title.
void setSubmenu(id self, SEL selector, NSMenu* menu) {
  NSString* const title = [[[menu title] copy] autorelease];
  originalSetSubmenu(self, selector, menu);
  [menu setTitle:title];
}

bool isTerminating = false;

void stopSoon() {
  [NSApp stop:nil];
  wakeAppKitsEventLoop();
}

bool hasLaunched = false;
std::function<void()> workAfterLaunching;
using DidFinishLaunching = void (*)(id, SEL, NSNotification*);
DidFinishLaunching originalDidFinishLaunching = nullptr;

void launchingHasFinished() {
  hasLaunched = true;
  if (auto work = std::exchange(workAfterLaunching, nullptr)) {
    standins::postInModes(standins::commonModes(), std::move(work));
  }
}

// GNUstep's loop may run for a while inside the delegate's callback.
void didFinishLaunching(id self, SEL selector, NSNotification* notification) {
  originalDidFinishLaunching(self, selector, notification);
  launchingHasFinished();
}

void launchAgain() {
  [[NSNotificationCenter defaultCenter]
      postNotificationName:NSApplicationDidFinishLaunchingNotification
                    object:NSApp];
}

// An application launches once; here the notification is posted again for each later run.
// GNUstep forgets a stop that comes before its loop has begun, and takes note of one only when an
// event comes.
void run(id self, SEL selector) {
  if (originalDidFinishLaunching == nullptr) {
    originalDidFinishLaunching = reinterpret_cast<DidFinishLaunching>(standins::replaceMethod(
        "ZephlinApplicationDelegate", @selector(applicationDidFinishLaunching:),
        reinterpret_cast<IMP>(didFinishLaunching)));
  }
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
  originalRun(self, selector);
  [heartbeat invalidate];
}

void terminate(id self, SEL selector, id sender) {
  standins::record("NSApplication terminate:%s", sender == nil ? "nil" : "sender");
  if (standins::knobs().terminateReturns) {
    isTerminating = true;
    stopSoon();
  } else {
    originalTerminate(self, selector, sender);
  }
}

void setMainMenu(id self, SEL selector, NSMenu* menu) {
  standins::record("NSApplication setMainMenu:%s", menu == nil ? "nil" : "menu");
  originalSetMainMenu(self, selector, menu);
}

void setDelegate(id self, SEL selector, id delegate) {
  standins::record("NSApplication setDelegate:%s", delegate == nil ? "nil" : "delegate");
  originalSetDelegate(self, selector, delegate);
}

template <typename Body>
void replace(const char* owner, SEL selector, Body body, Body& original) {
  original =
      reinterpret_cast<Body>(standins::replaceMethod(owner, selector, reinterpret_cast<IMP>(body)));
}

}  // namespace

@interface StandInApplication : NSObject
@end

@implementation StandInApplication

+ (void)load {
  standins::replaceMethod("NSApplication", @selector(activateIgnoringOtherApps:),
                          reinterpret_cast<IMP>(activate));
  standins::replaceMethod("NSApplication", @selector(isActive),
                          reinterpret_cast<IMP>(answerIsActive));
  replace("NSMenuItem", @selector(setSubmenu:), setSubmenu, originalSetSubmenu);
  replace("NSApplication", @selector(run), run, originalRun);
  replace("NSApplication", @selector(terminate:), terminate, originalTerminate);
  replace("NSApplication", @selector(setMainMenu:), setMainMenu, originalSetMainMenu);
  replace("NSApplication", @selector(setDelegate:), setDelegate, originalSetDelegate);
}

@end

@implementation NSApplication (StandIn)

- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy {
  standins::record("NSApplication setActivationPolicy:%ld", static_cast<long>(activationPolicy));
  return YES;
}

@end

namespace standins {

void whenLaunched(std::function<void()> work) {
  workAfterLaunching = std::move(work);
}

}  // namespace standins
