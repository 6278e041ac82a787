#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "Platform/Observation.h"

namespace zephlin {

/// The desktop as a whole. Main thread; so are the callbacks.
class Workspace {
 public:
  virtual ~Workspace() = default;
  /// Calls back each time the machine has woken from sleep.
  virtual std::unique_ptr<Observation> observeDidWake(std::function<void()> callback) = 0;
};

/// A running instance of an application.
struct RunningApplication {
  int processIdentifier;
};

/// The user's running applications with this bundle identifier, this process among them if it is
/// one. Empty if there are none or the platform cannot tell. Any thread; throws only
/// std::bad_alloc.
std::vector<RunningApplication> runningApplicationsWithBundleIdentifier(
    std::string_view bundleIdentifier);

/// The process identifier of this process.
int currentProcessIdentifier();

}  // namespace zephlin
