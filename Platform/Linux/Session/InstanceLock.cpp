#include "Platform/Linux/Session/InstanceLock.h"

#include <unistd.h>

#include <cstdlib>

#include "Base/FileDescriptor.h"
#include "Platform/Workspace.h"

namespace zephlin {

namespace {

std::string runtimeDirectory() {
  const char* const directory = std::getenv("XDG_RUNTIME_DIR");
  if (directory != nullptr && *directory == '/') {
    return directory;
  }
  return "/run/user/" + std::to_string(::getuid());
}

}  // namespace

std::string instanceLockPath(std::string_view bundleIdentifier) {
  return runtimeDirectory() + "/" + std::string(bundleIdentifier) + ".lock";
}

struct flock wholeFileLock() {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return lock;
}

// The kernel knows who holds the lock and drops it when the holder ends, so a file that is left
// behind means nothing.
std::vector<RunningApplication> runningApplicationsWithBundleIdentifier(
    std::string_view bundleIdentifier) {
  const std::string path = instanceLockPath(bundleIdentifier);
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  struct flock lock = wholeFileLock();
  if (!file.isOpen() || ::fcntl(file.get(), F_GETLK, &lock) == -1 || lock.l_type == F_UNLCK) {
    return {};
  }
  return {{static_cast<int>(lock.l_pid)}};
}

int currentProcessIdentifier() {
  return ::getpid();
}

}  // namespace zephlin
