#import <AppKit/AppKit.h>

#import "StandIns/AppKit/ViewState.h"
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

}  // namespace

@interface StandInWindow : NSObject
@end

@implementation StandInWindow

+ (void)load {
  originalSetContentSize = reinterpret_cast<SetContentSize>(standins::replaceMethod(
      "NSWindow", @selector(setContentSize:), reinterpret_cast<IMP>(setContentSize)));
}

@end
