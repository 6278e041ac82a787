#pragma once

#import <Foundation/Foundation.h>

#include <functional>

namespace standins {

/// NSDefaultRunLoopMode and the modes of menus and modal panels: the common modes of an
/// application.
NSArray* commonModes();

/// Runs the work on the main thread, in one of the modes. At once where the main run loop is in
/// such a mode, or does not run at all.
void performInModes(NSArray* modes, std::function<void()> work);

/// The same, but never at once, and from any thread.
void postInModes(NSArray* modes, std::function<void()> work);

/// The same after so many seconds. Main thread.
void postInModesAfter(double seconds, NSArray* modes, std::function<void()> work);

}  // namespace standins
