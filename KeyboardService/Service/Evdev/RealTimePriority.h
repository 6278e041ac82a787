#pragma once

namespace zephlin {

/// Has the process run ahead of ordinary ones, so that keys are not late when the machine is busy.
/// All works without, too, where the system does not allow it.
void takeRealTimePriority();

}  // namespace zephlin
