#include "KeyboardService/Service/InstanceLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "Base/ErrnoText.h"
#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

FileDescriptor openLockFile(const std::string& path) {
  FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file.isOpen()) {
    throw RequestError("cannot open the lock file " + printable(path) + errnoText(errno) +
                       "; run zephlin-hidd as root, or choose another place with --socket");
  }
  struct stat status {};
  if (::fstat(file.get(), &status) == -1 || !S_ISREG(status.st_mode)) {
    throw RequestError(printable(path) +
                       " is not a lock file; remove it, or choose another place with --socket");
  }
  return file;
}

void lock(const FileDescriptor& file, const std::string& socketPath) {
  if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
    return;
  }
  if (errno == EWOULDBLOCK) {
    throw RequestError("another instance is running on " + printable(socketPath) +
                       "; stop it first");
  }
  throw RequestError("cannot lock the lock file of " + printable(socketPath) + errnoText(errno) +
                     "; choose another place with --socket");
}

}  // namespace

InstanceLock::InstanceLock(const std::string& socketPath) : path_(socketPath + ".lock") {
  // A former holder may have removed the file between our opening and locking it. Then the lock is
  // on a file that nobody else will find, and the next try makes a new one.
  do {
    file_ = openLockFile(path_);
    lock(file_, socketPath);
  } while (!isAtPath());
}

InstanceLock::~InstanceLock() {
  // Removed while it is still held, so that whoever gets the lock next notices.
  ::unlink(path_.c_str());
}

bool InstanceLock::isAtPath() const {
  struct stat held {};
  struct stat found {};
  return ::fstat(file_.get(), &held) == 0 && ::lstat(path_.c_str(), &found) == 0 &&
         held.st_dev == found.st_dev && held.st_ino == found.st_ino;
}

}  // namespace zephlin
