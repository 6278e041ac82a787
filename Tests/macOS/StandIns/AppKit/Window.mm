#import <AppKit/AppKit.h>

#import "StandIns/AppKit/ViewState.h"
#import "StandIns/CallLog.h"
#import "StandIns/ReplacedMethod.h"

namespace {

using standins::ReplacedMethod;

// AppKit lays a window's content out anew when its size has changed.
const ReplacedMethod<void, NSSize> setContentSize("NSWindow", "setContentSize:",
                                                  [](id self, SEL selector, NSSize size) {
                                                    setContentSize.original(self, selector, size);
                                                    standins::layOut([self contentView]);
                                                    [[self contentView] setNeedsDisplay:YES];
                                                  });

const ReplacedMethod<void, id> makeKeyAndOrderFront(
    "NSWindow", "makeKeyAndOrderFront:", [](id self, SEL selector, id sender) {
      standins::record("NSWindow makeKeyAndOrderFront:");
      makeKeyAndOrderFront.original(self, selector, sender);
    });

const ReplacedMethod<id, NSRect, NSUInteger, NSBackingStoreType, BOOL> init(
    "NSWindow", "initWithContentRect:styleMask:backing:defer:",
    [](id self, SEL selector, NSRect content, NSUInteger style, NSBackingStoreType backing,
       BOOL isDeferred) -> id {
      standins::record("NSWindow initWithContentRect:%g %g %g %g", content.origin.x,
                       content.origin.y, content.size.width, content.size.height);
      return init.original(self, selector, content, style, backing, isDeferred);
    });

}  // namespace
