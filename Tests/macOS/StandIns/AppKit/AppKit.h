#pragma once

// GNUstep's AppKit, and what Platform/macOS uses beyond it, as Apple documents it.

#include_next <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#import "StandIns/AppKit/Constraints.h"
#import "StandIns/AppKit/Controls.h"
#import "StandIns/AppKit/StatusBar.h"
#import "StandIns/AppKit/Workspace.h"
