#import "Platform/macOS/MacApplication.h"

#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "Platform/Workspace.h"
#import "Platform/macOS/Bridge.h"

@implementation ZephlinApplicationDelegate

- (instancetype)initWithDelegate:(std::weak_ptr<zephlin::ApplicationDelegate>)delegate {
  self = [super init];
  if (self != nil) {
    _delegate = std::move(delegate);
  }
  return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  (void)notification;
  if (const auto delegate = _delegate.lock()) {
    delegate->applicationDidFinishLaunching();
  }
}

@end

namespace zephlin {

MacApplication::MacApplication() : application_([NSApplication sharedApplication]) {}

MacApplication::~MacApplication() {
  [application_ setMainMenu:nil];
  [application_ setDelegate:nil];
}

void MacApplication::setDelegate(std::weak_ptr<ApplicationDelegate> delegate) {
  Retained<ZephlinApplicationDelegate*> native(
      [[ZephlinApplicationDelegate alloc] initWithDelegate:std::move(delegate)]);
  [application_ setDelegate:native.get()];
  delegate_ = std::move(native);
}

void MacApplication::becomeAccessory() {
  [application_ setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void MacApplication::setMainMenu(std::shared_ptr<Menu> menu) {
  auto native = std::make_unique<MacMenu>(std::move(menu));
  [application_ setMainMenu:native->get()];
  mainMenu_ = std::move(native);
}

void MacApplication::activateIgnoringOtherApps() {
  [application_ activateIgnoringOtherApps:YES];
}

void MacApplication::run() {
  [application_ run];
}

void MacApplication::terminate() {
  [application_ terminate:nil];
}

std::optional<std::string> MacProcessInfo::environmentVariable(const std::string& name) const {
  const char* const value = std::getenv(name.c_str());
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::string MacProcessInfo::mainBundlePath() const {
  return portableText([[NSBundle mainBundle] bundlePath]);
}

std::vector<RunningApplication> runningApplicationsWithBundleIdentifier(
    std::string_view bundleIdentifier) {
  std::vector<RunningApplication> running;
  @autoreleasepool {
    for (NSRunningApplication* application in [NSRunningApplication
             runningApplicationsWithBundleIdentifier:nativeText(bundleIdentifier)]) {
      running.push_back({[application processIdentifier]});
    }
  }
  return running;
}

int currentProcessIdentifier() {
  return ::getpid();
}

}  // namespace zephlin
