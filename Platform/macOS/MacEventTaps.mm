#import "Platform/macOS/MacEventTaps.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#include <utility>

#import "Platform/macOS/Retained.h"

namespace zephlin {

namespace {

/// A tap that only listens. It holds a plain pointer to this, and calls only while its source is in
/// the main run loop.
class EventTap final : public Observation {
 public:
  using Callback = std::function<void(EventType type, ModifierFlags flags)>;

  explicit EventTap(Callback callback) : callback_(std::move(callback)) {}
  EventTap(const EventTap&) = delete;
  EventTap& operator=(const EventTap&) = delete;
  ~EventTap() override;

  /// False where the user has not allowed it.
  bool install(CGEventMask mask);

 private:
  static CGEventRef eventArrived(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                 void* context);

  Callback callback_;
  Retained<CFMachPortRef> port_;
  Retained<CFRunLoopSourceRef> source_;
};

EventTap::~EventTap() {
  if (port_) {
    CGEventTapEnable(port_.get(), false);
    CFRunLoopRemoveSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopDefaultMode);
  }
}

bool EventTap::install(CGEventMask mask) {
  port_ = Retained<CFMachPortRef>(CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap,
                                                   kCGEventTapOptionListenOnly, mask, eventArrived,
                                                   this));
  if (!port_) {
    return false;
  }
  source_ = Retained<CFRunLoopSourceRef>(
      CFMachPortCreateRunLoopSource(kCFAllocatorDefault, port_.get(), 0));
  CFRunLoopAddSource(CFRunLoopGetMain(), source_.get(), kCFRunLoopDefaultMode);
  CGEventTapEnable(port_.get(), true);
  return true;
}

CGEventRef EventTap::eventArrived(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                  void* context) {
  (void)proxy;
  if (context != nullptr) {
    // A copy, since the call may end the tap.
    const Callback callback = static_cast<EventTap*>(context)->callback_;
    // A notice about the tap itself comes without an event.
    callback(static_cast<EventType>(type), event == nullptr ? 0 : CGEventGetFlags(event));
  }
  return event;
}

}  // namespace

std::unique_ptr<Observation> MacEventTaps::listen(
    std::uint64_t mask, std::function<void(EventType type, ModifierFlags flags)> callback) {
  auto tap = std::make_unique<EventTap>(std::move(callback));
  if (!tap->install(mask)) {
    return nullptr;
  }
  return tap;
}

ModifierFlags MacEventTaps::currentModifierFlags() {
  return [NSEvent modifierFlags];
}

}  // namespace zephlin
