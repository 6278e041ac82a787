#pragma once

#import <AppKit/AppKit.h>

namespace standins {

/// The newest status item that is shown, or nil.
NSStatusItem* shownStatusItem();

}  // namespace standins
