#import <AppKit/AppKit.h>

#import "StandIns/AppKit/ViewState.h"
#import "StandIns/CallLog.h"
#import "StandIns/RunLoop.h"

namespace {

using SetContentSize = void (*)(id, SEL, NSSize);
SetContentSize originalSetContentSize = nullptr;

// AppKit lays a window's content out anew when its size has changed.
void setContentSize(id self, SEL selector, NSSize size) {
  originalSetContentSize(self, selector, size);
  standins::layOut([self contentView]);
  [[self contentView] setNeedsDisplay:YES];
}

using MakeKeyAndOrderFront = void (*)(id, SEL, id);
MakeKeyAndOrderFront originalMakeKeyAndOrderFront = nullptr;

void makeKeyAndOrderFront(id self, SEL selector, id sender) {
  standins::record("NSWindow makeKeyAndOrderFront:");
  originalMakeKeyAndOrderFront(self, selector, sender);
}

using Init = id (*)(id, SEL, NSRect, NSUInteger, NSBackingStoreType, BOOL);
Init originalInit = nullptr;

id init(id self, SEL selector, NSRect content, NSUInteger style, NSBackingStoreType backing,
        BOOL isDeferred) {
  standins::record("NSWindow initWithContentRect:%g %g %g %g", content.origin.x, content.origin.y,
                   content.size.width, content.size.height);
  return originalInit(self, selector, content, style, backing, isDeferred);
}

}  // namespace

@interface StandInWindow : NSObject
@end

@implementation StandInWindow

+ (void)load {
  originalSetContentSize = reinterpret_cast<SetContentSize>(standins::replaceMethod(
      "NSWindow", @selector(setContentSize:), reinterpret_cast<IMP>(setContentSize)));
  originalMakeKeyAndOrderFront = reinterpret_cast<MakeKeyAndOrderFront>(standins::replaceMethod(
      "NSWindow", @selector(makeKeyAndOrderFront:), reinterpret_cast<IMP>(makeKeyAndOrderFront)));
  originalInit = reinterpret_cast<Init>(
      standins::replaceMethod("NSWindow", @selector(initWithContentRect:styleMask:backing:defer:),
                              reinterpret_cast<IMP>(init)));
}

@end
