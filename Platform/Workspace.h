#pragma once

#include <string_view>
#include <vector>

namespace zephlin {

/// A running instance of an application.
struct RunningApplication {
  int processIdentifier;
};

/// The user's running applications with this bundle identifier, this process among them if it is
/// one. Empty where the platform knows of none, or cannot tell. Any thread; never throws but
/// std::bad_alloc.
std::vector<RunningApplication> runningApplicationsWithBundleIdentifier(
    std::string_view bundleIdentifier);

/// The process identifier of this process.
int currentProcessIdentifier();

}  // namespace zephlin
