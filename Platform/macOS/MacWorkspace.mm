#import "Platform/macOS/MacWorkspace.h"

#import <AppKit/AppKit.h>

#include <utility>

#import "Platform/macOS/Retained.h"

namespace zephlin {

namespace {

// Power notices come through the workspace's own centre, never through the default one.
NSNotificationCenter* workspaceNotificationCenter() {
  return [[NSWorkspace sharedWorkspace] notificationCenter];
}

class WakeObservation final : public Observation {
 public:
  explicit WakeObservation(Retained<id> token) : token_(std::move(token)) {}
  WakeObservation(const WakeObservation&) = delete;
  WakeObservation& operator=(const WakeObservation&) = delete;
  ~WakeObservation() override { [workspaceNotificationCenter() removeObserver:token_.get()]; }

 private:
  Retained<id> token_;
};

}  // namespace

std::unique_ptr<Observation> MacWorkspace::observeDidWake(std::function<void()> callback) {
  const std::function<void()> called = std::move(callback);
  const id token =
      [workspaceNotificationCenter() addObserverForName:NSWorkspaceDidWakeNotification
                                                 object:nil
                                                  queue:[NSOperationQueue mainQueue]
                                             usingBlock:^(NSNotification* notification) {
                                               (void)notification;
                                               // A copy, since the call may end the observation.
                                               const std::function<void()> current = called;
                                               current();
                                             }];
  return std::make_unique<WakeObservation>(Retained<id>::retaining(token));
}

}  // namespace zephlin
