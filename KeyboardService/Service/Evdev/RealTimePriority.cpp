#include "KeyboardService/Service/Evdev/RealTimePriority.h"

#include <sched.h>

namespace zephlin {

void takeRealTimePriority() {
  sched_param parameters{};
  parameters.sched_priority = 1;  // Ahead of all that is not real time, behind all else that is.
  ::sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameters);
}

}  // namespace zephlin
