#include <fcntl.h>
#include <unistd.h>

#include "Base/FileDescriptor.h"

namespace zephlin {

int openCloseOnExecPipe(int* ends) {
  return ::pipe2(ends, O_CLOEXEC);
}

int inheritStandardDescriptorsOnly(posix_spawn_file_actions_t& actions, posix_spawnattr_t&) {
  return ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

}  // namespace zephlin
