#pragma once

#import <AppKit/AppKit.h>

namespace standins {

/// The alert that is modal, or nil.
NSAlert* modalAlert();

}  // namespace standins
