// The numbers that portable code shares with Apple's frameworks are the frameworks' own.

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>
#import <ServiceManagement/ServiceManagement.h>

#include <cstdint>

#include "Platform/Application.h"
#include "Platform/EventTap.h"
#include "Platform/LoginService.h"
#include "Platform/Menu.h"
#include "Platform/StatusBar.h"
#include "Platform/Views.h"

namespace zephlin {

static_assert(NSInteger{static_cast<int>(ActivationPolicy::Accessory)} ==
              NSApplicationActivationPolicyAccessory);
static_assert(NSInteger{static_cast<int>(WindowLevel::Floating)} == NSFloatingWindowLevel);

static_assert(modifierCapsLock == NSEventModifierFlagCapsLock);
static_assert(modifierShift == NSEventModifierFlagShift);
static_assert(modifierCommand == NSEventModifierFlagCommand);
static_assert(modifierCapsLock == kCGEventFlagMaskAlphaShift);

static_assert(std::uint32_t(EventType::FlagsChanged) == kCGEventFlagsChanged);
static_assert(std::uint32_t(EventType::TapDisabledByTimeout) == kCGEventTapDisabledByTimeout);

static_assert(NSInteger{static_cast<int>(LoginServiceStatus::NotRegistered)} ==
              SMAppServiceStatusNotRegistered);
static_assert(NSInteger{static_cast<int>(LoginServiceStatus::Enabled)} ==
              SMAppServiceStatusEnabled);
static_assert(NSInteger{static_cast<int>(LoginServiceStatus::RequiresApproval)} ==
              SMAppServiceStatusRequiresApproval);
static_assert(NSInteger{static_cast<int>(LoginServiceStatus::NotFound)} ==
              SMAppServiceStatusNotFound);

static_assert(squareStatusItemLength == NSSquareStatusItemLength);

}  // namespace zephlin
