#import "Support/MacTest.h"

#import "Support/Mac.h"
#import "Support/WakeEventLoop.h"
#include "Tests/Support/FakeHidutil.h"

namespace zephlin::test {

namespace {

void forgetSettings() {
  NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
  for (NSString *key in [NSArray arrayWithObjects:@"instantCapsLockEnabled", @"lastApplyOK",
                                                  @"lastApplyDate", @"didSetupLoginItem", nil]) {
    [defaults removeObjectForKey:key];
  }
}

}  // namespace

void forEachNativeView(NSView* view, const std::function<void(NSView*)>& visit) {
  visit(view);
  for (NSView* child in [view subviews]) {
    forEachNativeView(child, visit);
  }
}

bool clickButton(NSView* view, const std::string& title) {
  NSButton* found = nil;
  forEachNativeView(view, [&](NSView* each) {
    if ([each isKindOfClass:[NSButton class]] &&
        title == [[static_cast<NSButton*>(each) title] UTF8String]) {
      found = static_cast<NSButton*>(each);
    }
  });
  [found performClick:nil];
  return found != nil;
}

Calls labelTexts(NSView* view) {
  Calls texts;
  forEachNativeView(view, [&texts](NSView* each) {
    if ([each isKindOfClass:[NSTextField class]]) {
      texts.emplace_back([[static_cast<NSTextField*>(each) stringValue] UTF8String]);
    }
  });
  return texts;
}

NSWindow* windowTitled(const std::string& title) {
  for (NSWindow* window in [NSApp windows]) {
    if (title == [[window title] UTF8String]) {
      return window;
    }
  }
  return nil;
}

NSMenu* openStatusMenu() {
  NSMenu* const menu = [mac::shownStatusItem() menu];
  [static_cast<id<NSMenuDelegate>>([menu delegate]) menuNeedsUpdate:menu];
  return menu;
}

void wakeFromSleep() {
  [[[NSWorkspace sharedWorkspace] notificationCenter]
      postNotificationName:NSWorkspaceDidWakeNotification
                    object:[NSWorkspace sharedWorkspace]];
}

MacTest::MacTest() {
  mac::reset();
  mac::stopTime();
  int argumentCount = 0;
  platform_ = makePlatform(argumentCount, nullptr);
  forgetSettings();
  FakeHidutil::shared().reset();
}

MacTest::~MacTest() {
  mac::settle();
  platform_.reset();
  mac::resumeTime();
}

void MacTest::waitUntil(const std::function<bool()>& condition) {
  while (!condition()) {
    const AutoreleasePool pool;
    [[NSRunLoop mainRunLoop] runMode:NSDefaultRunLoopMode
                          beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
  }
}

void MacTest::clickInModalWindow(const std::string& title) {
  clickButton([[NSApp modalWindow] contentView], title);
  wakeAppKitsEventLoop();
}

}  // namespace zephlin::test
