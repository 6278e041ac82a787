#pragma once

namespace zephlin {

/// Has the process run ahead of ordinary ones, so that keys are not late when the machine is busy.
/// Returns whether the system allows it; all works without, too.
bool takeRealTimePriority();

}  // namespace zephlin
