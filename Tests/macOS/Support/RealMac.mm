#import <objc/runtime.h>

#include <stdexcept>
#include <utility>

#import "Platform/macOS/Retained.h"
#import "Support/Mac.h"
#import "Support/WakeEventLoop.h"

namespace zephlin::test::mac {

namespace {

NSStatusItem* statusItem = nil;  // Owned by the status bar.
NSAlert* alert = nil;            // Owned by who runs it.

using MakeStatusItem = NSStatusItem* (*)(id, SEL, CGFloat);
MakeStatusItem originalMakeStatusItem = nullptr;
using RemoveStatusItem = void (*)(id, SEL, NSStatusItem*);
RemoveStatusItem originalRemoveStatusItem = nullptr;
using RunModal = NSModalResponse (*)(id, SEL);
RunModal originalRunModal = nullptr;

NSStatusItem* makeStatusItem(id self, SEL selector, CGFloat length) {
  return statusItem = originalMakeStatusItem(self, selector, length);
}

void removeStatusItem(id self, SEL selector, NSStatusItem* item) {
  statusItem = statusItem == item ? nil : statusItem;
  originalRemoveStatusItem(self, selector, item);
}

NSModalResponse runModal(id self, SEL selector) {
  alert = self;
  const NSModalResponse response = originalRunModal(self, selector);
  alert = nil;
  return response;
}

void terminate(id self, SEL selector, id sender) {
  (void)self;
  (void)selector;
  [NSApp stop:sender];
  wakeAppKitsEventLoop();
}

template <typename Body>
Body replace(Class owner, SEL selector, Body body) {
  return reinterpret_cast<Body>(method_setImplementation(class_getInstanceMethod(owner, selector),
                                                         reinterpret_cast<IMP>(body)));
}

/// AppKit lists neither status items nor alerts, so they are noted when they are made and run.
bool observeAppKit() {
  originalMakeStatusItem =
      replace([NSStatusBar class], @selector(statusItemWithLength:), makeStatusItem);
  originalRemoveStatusItem =
      replace([NSStatusBar class], @selector(removeStatusItem:), removeStatusItem);
  originalRunModal = replace([NSAlert class], @selector(runModal), runModal);
  replace([NSApplication class], @selector(terminate:), terminate);
  return true;
}

[[noreturn]] void failWithoutHands() {
  throw std::logic_error("a real Mac does not do this without its user");
}

}  // namespace

void reset() {
  [[maybe_unused]] static const bool isObserved = observeAppKit();
}

void stopTime() {}

void resumeTime() {}

// Nothing says when Dispatch's queues are idle; what tests queue takes no time worth speaking of.
void settle() {
  NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:0.3];
  while ([end timeIntervalSinceNow] > 0) {
    const AutoreleasePool pool;
    [[NSRunLoop mainRunLoop] runMode:NSDefaultRunLoopMode
                          beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
  }
}

// By the run loop and not by the main queue, which does nothing else until a block has returned.
void whenLaunched(std::function<void()> work) {
  const std::function<void()> posted = std::move(work);
  __block id token = nil;
  token = [[NSNotificationCenter defaultCenter]
      addObserverForName:NSApplicationDidFinishLaunchingNotification
                  object:nil
                   queue:nil
              usingBlock:^(NSNotification* notification) {
                (void)notification;
                [[NSNotificationCenter defaultCenter] removeObserver:token];
                [[NSRunLoop mainRunLoop] performBlock:^{
                  posted();
                }];
              }];
}

void whenModal(std::function<void()> work) {
  const std::function<void()> posted = std::move(work);
  [[NSRunLoop mainRunLoop] performInModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]
                                    block:^{
                                      posted();
                                    }];
}

NSStatusItem* shownStatusItem() {
  return statusItem;
}

// A symbol's image does not say its name, but looks like any other of that name.
std::string symbolName(NSImage* image) {
  for (NSString *name in
       [NSArray arrayWithObjects:@"capslock", @"capslock.fill", @"exclamationmark.triangle", nil]) {
    NSImage* const symbol = [NSImage imageWithSystemSymbolName:name accessibilityDescription:nil];
    if ([[symbol TIFFRepresentation] isEqual:[image TIFFRepresentation]]) {
      return [name UTF8String];
    }
  }
  return {};
}

NSAlert* modalAlert() {
  return alert;
}

void setDark(bool isDark) {
  [NSApp setAppearance:[NSAppearance appearanceNamed:isDark ? NSAppearanceNameDarkAqua
                                                            : NSAppearanceNameAqua]];
}

bool isShown(NSColor* color, CGColorRef shown, NSView* view) {
  __block bool isEqual = false;
  [[view effectiveAppearance] performAsCurrentDrawingAppearance:^{
    isEqual = shown != nullptr && CGColorEqualToColor([color CGColor], shown);
  }];
  return isEqual;
}

void plugKeyboard() {
  failWithoutHands();
}

void pressCapsLock() {
  failWithoutHands();
}

void releaseCapsLock() {
  failWithoutHands();
}

void switchLoginItemOff() {
  failWithoutHands();
}

void makeLoginItemsFail() {
  failWithoutHands();
}

}  // namespace zephlin::test::mac
