// The numbers that portable code shares with Apple's frameworks are the frameworks' own.

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>
#import <ServiceManagement/ServiceManagement.h>

#include "Platform/Keyboard.h"
#include "Platform/Services.h"

namespace zephlin {

static_assert(modifierCapsLock == NSEventModifierFlagCapsLock);
static_assert(modifierShift == NSEventModifierFlagShift);
static_assert(modifierCommand == NSEventModifierFlagCommand);
static_assert(modifierCapsLock == kCGEventFlagMaskAlphaShift);

static_assert(NSInteger{static_cast<int>(LoginServiceStatus::NotRegistered)} ==
              SMAppServiceStatusNotRegistered);
static_assert(NSInteger{static_cast<int>(LoginServiceStatus::Enabled)} ==
              SMAppServiceStatusEnabled);
static_assert(NSInteger{static_cast<int>(LoginServiceStatus::RequiresApproval)} ==
              SMAppServiceStatusRequiresApproval);
static_assert(NSInteger{static_cast<int>(LoginServiceStatus::NotFound)} ==
              SMAppServiceStatusNotFound);

}  // namespace zephlin
