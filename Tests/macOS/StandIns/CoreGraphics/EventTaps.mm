#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#include <vector>

#import "StandIns/Actions.h"
#import "StandIns/CallLog.h"
#import "StandIns/CoreFoundation/MachPort.h"
#import "StandIns/Knobs.h"
#import "StandIns/RunLoop.h"

struct __CGEventTapProxy {};

struct __CGEvent {
  CGEventFlags flags;
};

namespace {

/// The taps that exist, not owned.
std::vector<StandInMachPort*>& taps() {
  static std::vector<StandInMachPort*> instance;
  return instance;
}

bool isNotice(CGEventType type) {
  return type == kCGEventTapDisabledByTimeout || type == kCGEventTapDisabledByUserInput;
}

bool wants(const StandInMachPort* tap, CGEventType type) {
  const bool isListening = tap->_isEnabled && tap->_source != nil && tap->_source->_isScheduled;
  return isListening && (isNotice(type) || (tap->_mask & (1ULL << type)) != 0);
}

}  // namespace

CFMachPortRef CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place,
                               CGEventTapOptions options, CGEventMask eventsOfInterest,
                               CGEventTapCallBack callback, void* userInfo) {
  standins::record("CGEventTapCreate(location %u, placement %u, options %u, mask 0x%llx)", tap,
                   place, options, static_cast<unsigned long long>(eventsOfInterest));
  if (!standins::knobs().eventTapsAllowed) {
    return nullptr;
  }
  StandInEventTap* const port = [[StandInEventTap alloc] init];
  port->_mask = eventsOfInterest;
  port->_callback = callback;
  port->_userInfo = userInfo;
  taps().push_back(port);
  return reinterpret_cast<CFMachPortRef>(port);
}

void CGEventTapEnable(CFMachPortRef tap, bool enable) {
  standins::record("CGEventTapEnable(%s)", enable ? "true" : "false");
  reinterpret_cast<StandInMachPort*>(tap)->_isEnabled = enable ? YES : NO;
}

CGEventFlags CGEventGetFlags(CGEventRef event) {
  return event->flags;
}

@implementation StandInEventTap

- (void)dealloc {
  std::erase(taps(), self);
  [super dealloc];
}

@end

void standins::postEvent(std::uint32_t type, std::uint64_t flags) {
  const auto eventType = static_cast<CGEventType>(type);
  performInModes([NSArray arrayWithObject:NSDefaultRunLoopMode], [eventType, flags] {
    __CGEventTapProxy proxy;
    __CGEvent event{static_cast<CGEventFlags>(flags)};
    CGEventRef const passed = isNotice(eventType) ? nullptr : &event;
    const std::vector<StandInMachPort*> listening = taps();
    for (const StandInMachPort* tap : listening) {
      if (wants(tap, eventType)) {
        CGEventRef const returned = tap->_callback(&proxy, eventType, passed, tap->_userInfo);
        record("event %s", returned == passed ? "returned unchanged" : "altered");
      }
    }
  });
}
