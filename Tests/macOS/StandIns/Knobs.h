#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace standins {

/// How the frameworks answer; at first as on a Mac where all is allowed. Main thread.
struct Knobs {
  bool notificationPortsAvailable = true;
  std::int32_t matchingResult = 0;
  std::int32_t hidOpenResult = 0;
  bool eventTapsAllowed = true;
  /// NSEvent's modifierFlags.
  std::uint64_t modifierFlags = 0;

  /// SMAppService's status, and what its two operations report; empty for success. Where a
  /// registration needs the user's approval it succeeds with that status.
  int loginStatus = 0;
  std::string loginError;
  bool registrationNeedsApproval = false;

  std::string mainBundlePath = "/usr/local/bin";
  bool bundleHasSparkle = false;
  /// Bundle identifiers and process identifiers.
  std::vector<std::pair<std::string, int>> runningApplications;

  bool statusItemsHaveButtons = true;
  std::set<std::string> symbols = {"capslock", "capslock.fill", "exclamationmark.triangle"};
  /// Whether NSApplication's terminate: ends the event loop instead of the process.
  bool terminateReturns = false;
  /// Colours of layers are others in the dark.
  bool isDark = false;
  bool viewsCanBeCached = true;
  bool imagesCanBeEncoded = true;
};

inline Knobs& knobs() {
  static Knobs instance;
  return instance;
}

}  // namespace standins
