#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "Base/FileDescriptor.h"
#include "Platform/Linux/Session/InstanceLockPath.h"
#include "Platform/Workspace.h"

namespace zephlin {

// An instance write-locks the user's lock file with fcntl for as long as it runs. The kernel names
// the holder and forgets the lock with it, so a file left behind means nothing.
std::vector<RunningApplication> runningApplicationsWithBundleIdentifier(
    std::string_view bundleIdentifier) {
  const std::string path = instanceLockPath(bundleIdentifier);
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  if (!file.isOpen() || ::fcntl(file.get(), F_GETLK, &lock) == -1 || lock.l_type == F_UNLCK) {
    return {};
  }
  return {{static_cast<int>(lock.l_pid)}};
}

int currentProcessIdentifier() {
  return ::getpid();
}

}  // namespace zephlin
