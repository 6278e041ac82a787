#include "HidUtil/Evdev/RealTimePriority.h"

#include <sched.h>

namespace zephlin {

bool takeRealTimePriority() {
  sched_param parameters{};
  parameters.sched_priority = 1;  // Ahead of all that is not real time, behind all else that is.
  return ::sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameters) == 0;
}

}  // namespace zephlin
