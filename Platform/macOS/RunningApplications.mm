#import <AppKit/AppKit.h>
#include <unistd.h>

#include "Platform/Workspace.h"
#import "Platform/macOS/Text.h"

namespace zephlin {

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
