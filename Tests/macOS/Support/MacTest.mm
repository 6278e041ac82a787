#import "Support/MacTest.h"

#include <mutex>

#include "StandIns/Actions.h"
#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "StandIns/RunLoop.h"
#include "Support/FakeHidutil.h"

namespace zephlin::test {

namespace {

struct Log {
  std::mutex mutex;
  Calls lines;
};

Log& log() {
  static Log instance;
  return instance;
}

// What GNUstep hands over is "date time program[process:thread] text" and a line feed.
void keepLine(NSString* message) {
  std::string line = [message UTF8String];
  const auto text = line.find("] ");
  line = line.substr(text == std::string::npos ? 0 : text + 2);
  const std::scoped_lock lock(log().mutex);
  log().lines.push_back(line.substr(0, line.rfind('\n')));
}

void forgetLines() {
  const std::scoped_lock lock(log().mutex);
  log().lines.clear();
}

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

MacTest::MacTest() {
  GSDebugAllocationActive(YES);
  _NSLog_printf_handler = keepLine;
  standins::knobs() = {};
  standins::knobs().terminateReturns = true;
  standins::stopTime();
  int argumentCount = 0;
  platform_ = makePlatform(argumentCount, nullptr);
  standins::forgetCalls();
  forgetLines();
  forgetSettings();
  FakeHidutil::shared().reset();
}

MacTest::~MacTest() {
  standins::settle();
  platform_.reset();
  standins::resumeTime();
}

void MacTest::waitUntil(const std::function<bool()>& condition) {
  while (!condition()) {
    const AutoreleasePool pool;
    [[NSRunLoop mainRunLoop] runMode:NSDefaultRunLoopMode
                          beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
  }
}

void MacTest::whenModal(std::function<void()> work) {
  standins::postInModes([NSArray arrayWithObject:NSModalPanelRunLoopMode], std::move(work));
}

void MacTest::clickInModalWindow(const std::string& title) {
  clickButton([[NSApp modalWindow] contentView], title);
  standins::wakeEventLoop();
}

int MacTest::liveObjectsOf(const char* className) {
  return GSDebugAllocationCount(NSClassFromString([NSString stringWithUTF8String:className]));
}

Calls MacTest::logLines() {
  const std::scoped_lock lock(log().mutex);
  return log().lines;
}

}  // namespace zephlin::test
