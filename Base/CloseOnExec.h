#pragma once

#include <spawn.h>

namespace zephlin {

/// Each system's own ways to keep a process's descriptors from its children.

/// Opens a pipe with both ends close-on-exec. Returns as pipe(2) does. On macOS the ends become so
/// an instant after they are open, and code that launches a child just then, in another way than
/// `ChildProcess` does, hands them down.
int openCloseOnExecPipe(int* ends);

/// Makes posix_spawn's child inherit the descriptors 0 to 2 only, as `actions` leave them. To be
/// added after all other actions; adds to the flags of `attributes`. Returns an error number or 0.
int inheritStandardDescriptorsOnly(posix_spawn_file_actions_t& actions,
                                   posix_spawnattr_t& attributes);

}  // namespace zephlin
