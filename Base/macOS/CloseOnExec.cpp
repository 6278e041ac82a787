#include <fcntl.h>
#include <unistd.h>

#include "Base/FileDescriptor.h"

namespace zephlin {

int openCloseOnExecPipe(int* ends) {
  const int result = ::pipe(ends);
  if (result == 0) {
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
  }
  return result;
}

int inheritStandardDescriptorsOnly(posix_spawn_file_actions_t& actions,
                                   posix_spawnattr_t& attributes) {
  short flags = 0;
  if (const int error = ::posix_spawnattr_getflags(&attributes, &flags)) {
    return error;
  }
  flags = static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT);
  if (const int error = ::posix_spawnattr_setflags(&attributes, flags)) {
    return error;
  }
  // The child would not be launched if standard input were to be inherited while it is closed.
  return ::fcntl(STDIN_FILENO, F_GETFD) == -1
             ? 0
             : ::posix_spawn_file_actions_addinherit_np(&actions, STDIN_FILENO);
}

}  // namespace zephlin
