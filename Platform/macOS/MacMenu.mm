#import "Platform/macOS/MacMenu.h"

#include <utility>

#import "Platform/macOS/Bridge.h"
#import "Platform/macOS/MacUpdater.h"

namespace zephlin {

namespace {

/// What the first responders that know them answer to.
SEL selectorFor(ResponderAction action) {
  switch (action) {
    case ResponderAction::Hide:
      return @selector(hide:);
    case ResponderAction::Terminate:
      return @selector(terminate:);
    case ResponderAction::Undo:
      return NSSelectorFromString(@"undo:");
    case ResponderAction::Redo:
      return NSSelectorFromString(@"redo:");
    case ResponderAction::Cut:
      return @selector(cut:);
    case ResponderAction::Copy:
      return @selector(copy:);
    case ResponderAction::Paste:
      return @selector(paste:);
    case ResponderAction::SelectAll:
      return @selector(selectAll:);
  }
}

/// The item owns its represented object, and so its target.
void setTarget(NSMenuItem* native, id target, SEL action) {
  [native setRepresentedObject:target];
  [native setTarget:target];
  [native setAction:action];
}

/// A responder's action has no target: AppKit looks for one along the responder chain.
void setAction(NSMenuItem* native, const MenuAction& action) {
  if (const auto* const responder = std::get_if<ResponderAction>(&action)) {
    [native setAction:selectorFor(*responder)];
  } else if (const auto* const own = std::get_if<std::function<void()>>(&action)) {
    const Retained<ZephlinActionTarget*> target([[ZephlinActionTarget alloc] initWithAction:*own]);
    setTarget(native, target.get(), @selector(performAction:));
  } else if (const auto* const updater = std::get_if<std::weak_ptr<Updater>>(&action)) {
    if (const auto live = updater->lock()) {
      setTarget(native, updaterController(*live), @selector(checkForUpdates:));
    }
  }
}

Retained<NSMenu*> makeNativeMenu(const Menu& menu);

Retained<NSMenuItem*> makeNativeItem(const MenuItem& item) {
  Retained<NSMenuItem*> made([[NSMenuItem alloc] initWithTitle:nativeText(item.title)
                                                        action:nullptr
                                                 keyEquivalent:nativeText(item.keyEquivalent)]);
  NSMenuItem* const native = made.get();
  [native setKeyEquivalentModifierMask:static_cast<NSEventModifierFlags>(
                                           item.keyEquivalentModifierMask)];
  [native setState:item.isChecked ? NSControlStateValueOn : NSControlStateValueOff];
  [native setEnabled:item.isEnabled ? YES : NO];
  setAction(native, item.action);
  if (item.submenu) {
    [native setSubmenu:makeNativeMenu(*item.submenu).get()];
  }
  return made;
}

void addItems(NSMenu* native, const Menu& menu) {
  for (const auto& item : menu.items()) {
    if (item->isSeparator) {
      [native addItem:[NSMenuItem separatorItem]];
    } else {
      [native addItem:makeNativeItem(*item).get()];
    }
  }
}

Retained<NSMenu*> makeNativeMenu(const Menu& menu) {
  Retained<NSMenu*> native([[NSMenu alloc] initWithTitle:nativeText(menu.title)]);
  [native.get() setAutoenablesItems:menu.autoenablesItems ? YES : NO];
  addItems(native.get(), menu);
  return native;
}

}  // namespace

MacMenu::MacMenu(std::shared_ptr<Menu> menu)
    : menu_(std::move(menu)),
      nativeMenu_(makeNativeMenu(*menu_)),
      delegate_([[ZephlinMenuDelegate alloc] initWithMenu:menu_]) {
  [nativeMenu_.get() setDelegate:delegate_.get()];
}

MacMenu::~MacMenu() {
  [nativeMenu_.get() setDelegate:nil];
}

void MacMenu::showTitles() {
  NSInteger index = 0;
  for (const auto& item : menu_->items()) {
    NSMenuItem* const native = [nativeMenu_.get() itemAtIndex:index++];
    NSString* const title = nativeText(item->title);
    if (![[native title] isEqualToString:title]) {
      [native setTitle:title];
    }
  }
}

}  // namespace zephlin

@implementation ZephlinMenuDelegate

- (instancetype)initWithMenu:(std::weak_ptr<zephlin::Menu>)menu {
  self = [super init];
  if (self != nil) {
    _menu = std::move(menu);
  }
  return self;
}

- (void)menuNeedsUpdate:(NSMenu*)native {
  const auto menu = _menu.lock();
  const auto delegate = menu ? menu->delegate.lock() : nullptr;
  if (delegate) {
    delegate->menuNeedsUpdate(*menu);
    [native removeAllItems];
    zephlin::addItems(native, *menu);
  }
}

@end
