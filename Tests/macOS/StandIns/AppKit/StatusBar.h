#pragma once

// The status bar, whose items have a button.

#import "StandIns/CallLog.h"

namespace standins {

struct LiveStatusItem : Live {
  LiveStatusItem() : Live("NSStatusItem") {}
};

}  // namespace standins

#pragma clang assume_nonnull begin

@interface StandInStatusItem : NSObject {
 @private
  NSStatusBarButton* _button;
  NSMenu* _menu;
  standins::LiveStatusItem _live;
}
@property(readonly, strong, nullable) NSStatusBarButton* button;
@property(strong, nullable) NSMenu* menu;
@end

@interface StandInStatusBar : NSObject
+ (StandInStatusBar*)systemStatusBar;
- (StandInStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(StandInStatusItem*)item;
@end

#define NSStatusItem StandInStatusItem
#define NSStatusBar StandInStatusBar

#pragma clang assume_nonnull end
