#import "Platform/macOS/MacServices.h"

#import <AppKit/AppKit.h>
#import <CoreFoundation/CoreFoundation.h>
#import <ServiceManagement/ServiceManagement.h>

#include <utility>

#import "Platform/macOS/Bridge.h"
#import "Platform/macOS/Retained.h"

namespace zephlin {

WallTime MacClock::now() const {
  return WallTime(Seconds(CFAbsoluteTimeGetCurrent() + kCFAbsoluteTimeIntervalSince1970));
}

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

void MacSystemLog::log(const std::string& text) {
  @autoreleasepool {
    NSLog(@"%@", nativeText(text));
  }
}

// boolForKey: would also take a text such as "NO" for a Boolean, and give NO for what is absent.
std::optional<bool> MacUserDefaults::boolean(const std::string& key) const {
  const id stored = [[NSUserDefaults standardUserDefaults] objectForKey:nativeText(key)];
  if (stored == nil || CFGetTypeID(static_cast<CFTypeRef>(stored)) != CFBooleanGetTypeID()) {
    return std::nullopt;
  }
  return [stored boolValue] != NO;
}

bool MacUserDefaults::boolForKey(const std::string& key) const {
  return [[NSUserDefaults standardUserDefaults] boolForKey:nativeText(key)] != NO;
}

void MacUserDefaults::setBoolean(const std::string& key, bool value) {
  [[NSUserDefaults standardUserDefaults] setBool:(value ? YES : NO) forKey:nativeText(key)];
}

void MacUserDefaults::setDouble(const std::string& key, double value) {
  [[NSUserDefaults standardUserDefaults] setDouble:value forKey:nativeText(key)];
}

namespace {

[[noreturn]] void throwError(NSError* error) {
  throw NativeError(portableText([error localizedDescription]), portableText([error domain]),
                    [error code]);
}

}  // namespace

void MacLoginService::registerMainApp() {
  NSError* error = nil;
  if (![[SMAppService mainAppService] registerAndReturnError:&error]) {
    throwError(error);
  }
}

void MacLoginService::unregisterMainApp() {
  NSError* error = nil;
  if (![[SMAppService mainAppService] unregisterAndReturnError:&error]) {
    throwError(error);
  }
}

LoginServiceStatus MacLoginService::status() const {
  return static_cast<LoginServiceStatus>([[SMAppService mainAppService] status]);
}

void MacLoginService::openSystemSettingsLoginItems() {
  [SMAppService openSystemSettingsLoginItems];
}

}  // namespace zephlin
