#pragma once

#include <sys/types.h>

namespace zephlin {

/// Asks the running instance over the session bus to come forward, and tells whether it has
/// answered.
enum class InstanceReply {
  Answered,
  /// It does not own its name yet.
  NotThereYet,
  /// There is no bus, or no answer.
  Unreachable
};

/// Blocks for a few seconds at most. Main thread, with a QCoreApplication.
InstanceReply askToComeForward(pid_t instance);

}  // namespace zephlin
