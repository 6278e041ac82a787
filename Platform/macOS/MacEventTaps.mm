#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

#include <utility>

#import "Platform/macOS/MacKeyboard.h"
#import "Platform/macOS/MacServices.h"
#import "Platform/macOS/Retained.h"

namespace zephlin {

namespace {

/// A tap that only listens. It holds a plain pointer to this, and calls only while its source is in
/// the main run loop.
class EventTap final : public Observation {
 public:
  using Callback = std::function<void(const FlagsEvent&)>;

  explicit EventTap(Callback callback) : callback_(std::move(callback)) {}
  EventTap(const EventTap&) = delete;
  EventTap& operator=(const EventTap&) = delete;
  ~EventTap() override;

  /// False if the user has not allowed it.
  bool install();

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

bool EventTap::install() {
  port_ = Retained<CFMachPortRef>(
      CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionListenOnly,
                       CGEventMask{1} << kCGEventFlagsChanged, eventArrived, this));
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
  // Whatever the mask, notices that the tap was disabled arrive too.
  if (context != nullptr && type == kCGEventFlagsChanged) {
    // A copy, since the call may end the tap.
    const Callback callback = static_cast<EventTap*>(context)->callback_;
    callback({CGEventGetFlags(event), MacClock().now().time_since_epoch()});
  }
  return event;
}

}  // namespace

std::unique_ptr<Observation> MacEventTaps::listenToFlagsChanged(
    std::function<void(const FlagsEvent&)> callback) {
  auto tap = std::make_unique<EventTap>(std::move(callback));
  if (!tap->install()) {
    return nullptr;
  }
  return tap;
}

ModifierFlags MacEventTaps::currentModifierFlags() {
  return [NSEvent modifierFlags];
}

}  // namespace zephlin
