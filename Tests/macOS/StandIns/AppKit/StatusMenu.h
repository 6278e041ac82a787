#pragma once

#import <AppKit/AppKit.h>

namespace standins {

/// The newest status item that is shown, or nil.
NSStatusItem* shownStatusItem();

/// Has the newest item's menu updated by its delegate, as AppKit does before it opens a menu.
NSMenu* openStatusMenu();

}  // namespace standins
