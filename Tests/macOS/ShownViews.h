#pragma once

#import <AppKit/AppKit.h>

#include "Tests/Contract/ShownWindow.h"

namespace zephlin::test {

/// Reads back what AppKit shows in the window.
contract::ShownWindow readBack(NSWindow* window);

}  // namespace zephlin::test
