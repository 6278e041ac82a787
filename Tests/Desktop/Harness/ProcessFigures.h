#pragma once

#include <sys/types.h>

namespace zephlin::test {

/// What a process has in memory, in KiB (proc(5), smaps_rollup).
struct MemoryFigures {
  long residentSet = 0;
  long proportionalSet = 0;  ///< With its share of the pages that others have too.
};

MemoryFigures memoryOf(pid_t process);

/// How often its threads have waited, and so been woken, since they began (proc(5), status).
long wakeUpsOf(pid_t process);

}  // namespace zephlin::test
