#pragma once

// The keys that Platform/macOS uses, as Apple documents them.

#define kIOHIDDeviceUsageKey "DeviceUsage"
#define kIOHIDDeviceUsagePageKey "DeviceUsagePage"
#define kIOHIDElementUsageKey "Usage"
#define kIOHIDElementUsagePageKey "UsagePage"
