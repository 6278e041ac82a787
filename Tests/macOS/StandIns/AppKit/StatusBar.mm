#import <AppKit/AppKit.h>

#import "StandIns/AppKit/Shown.h"
#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"

namespace {

/// The items that are shown, owned as the bar owns them.
NSMutableArray* shownItems() {
  static NSMutableArray* const instance = [[NSMutableArray alloc] init];
  return instance;
}

}  // namespace

@implementation StandInStatusItem

- (instancetype)init {
  self = [super init];
  if (self != nil && standins::knobs().statusItemsHaveButtons) {
    _button = [[NSStatusBarButton alloc] initWithFrame:NSMakeRect(0, 0, 22, 22)];
  }
  return self;
}

- (void)dealloc {
  [_button release];
  [_menu release];
  [super dealloc];
}

@synthesize button = _button;

- (NSMenu*)menu {
  return _menu;
}

- (void)setMenu:(NSMenu*)menu {
  standins::record("NSStatusItem setMenu: delegate %s, autoenables %d, %lu items",
                   [menu delegate] == nil ? "none" : "set", [menu autoenablesItems],
                   static_cast<unsigned long>([menu numberOfItems]));
  [menu retain];
  [_menu release];
  _menu = menu;
}

@end

@implementation StandInStatusBar

+ (StandInStatusBar*)systemStatusBar {
  static StandInStatusBar* const bar = [[StandInStatusBar alloc] init];
  return bar;
}

- (StandInStatusItem*)statusItemWithLength:(CGFloat)length {
  standins::record("NSStatusBar statusItemWithLength:%g", length);
  StandInStatusItem* const item = [[[StandInStatusItem alloc] init] autorelease];
  [shownItems() addObject:item];
  return item;
}

- (void)removeStatusItem:(StandInStatusItem*)item {
  standins::record("NSStatusBar removeStatusItem");
  [shownItems() removeObject:item];
}

@end

NSStatusItem* standins::shownStatusItem() {
  return [shownItems() lastObject];
}
