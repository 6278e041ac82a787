#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "Platform/Workspace.h"
#include "ZephlinCore/FileDescriptor.h"

namespace zephlin {

namespace {

/// The user's runtime directory (XDG Base Directory), which only the user can write to.
std::string runtimeDirectory() {
  const char* const directory = std::getenv("XDG_RUNTIME_DIR");
  if (directory != nullptr && *directory == '/') {
    return directory;
  }
  return "/run/user/" + std::to_string(::getuid());
}

}  // namespace

// An instance write-locks the user's lock file with fcntl for as long as it runs. The kernel names
// the holder and forgets the lock with it, so a file left behind means nothing.
std::vector<RunningApplication> runningApplicationsWithBundleIdentifier(
    std::string_view bundleIdentifier) {
  const std::string path = runtimeDirectory() + "/" + std::string(bundleIdentifier) + ".lock";
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
