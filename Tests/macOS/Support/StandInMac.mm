#import "Support/StandInMac.h"

#include <mutex>
#include <utility>

#include "StandIns/Actions.h"
#import "StandIns/AppKit/Shown.h"
#include "StandIns/CallLog.h"
#include "StandIns/Knobs.h"
#import "StandIns/RunLoop.h"
#import "Support/Mac.h"

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

}  // namespace

int liveObjectsOf(const char* className) {
  return GSDebugAllocationCount(NSClassFromString([NSString stringWithUTF8String:className]));
}

Calls logLines() {
  const std::scoped_lock lock(log().mutex);
  return log().lines;
}

namespace mac {

void reset() {
  GSDebugAllocationActive(YES);
  _NSLog_printf_handler = keepLine;
  // GNUstep logs lines of its own when the application is made.
  [NSApplication sharedApplication];
  standins::knobs() = {};
  standins::knobs().terminateReturns = true;
  standins::forgetCalls();
  forgetLines();
}

void stopTime() {
  standins::stopTime();
}

void resumeTime() {
  standins::resumeTime();
}

void settle() {
  standins::settle();
}

void whenLaunched(std::function<void()> work) {
  standins::whenLaunched(std::move(work));
}

void whenModal(std::function<void()> work) {
  standins::postInModes([NSArray arrayWithObject:NSModalPanelRunLoopMode], std::move(work));
}

NSStatusItem* shownStatusItem() {
  return standins::shownStatusItem();
}

std::string symbolName(NSImage* image) {
  return image == nil ? std::string()
                      : [static_cast<StandInSymbolImage*>(image)->_symbolName UTF8String];
}

NSAlert* modalAlert() {
  return standins::modalAlert();
}

void setDark(bool isDark) {
  standins::setDark(isDark);
}

bool isShown(NSColor* color, CGColorRef shown, NSView* view) {
  (void)view;
  // A CGColorRef is an NSColor here.
  return [reinterpret_cast<NSColor*>([color CGColor]) isEqual:reinterpret_cast<NSColor*>(shown)];
}

void plugKeyboard() {
  standins::attachDevice();
}

void pressCapsLock() {
  standins::knobs().modifierFlags ^= modifierCapsLock;
  standins::reportKey(7, 57, 1);
  standins::postEvent(12, standins::knobs().modifierFlags);
}

void releaseCapsLock() {
  standins::reportKey(7, 57, 0);
}

void switchLoginItemOff() {
  standins::knobs().registrationNeedsApproval = true;
  standins::knobs().loginStatus = static_cast<int>(LoginServiceStatus::RequiresApproval);
}

void makeLoginItemsFail() {
  standins::knobs().loginError = "not permitted";
}

}  // namespace mac

}  // namespace zephlin::test
