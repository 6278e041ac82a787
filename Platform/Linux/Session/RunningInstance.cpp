#include "Platform/Linux/Session/RunningInstance.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <cerrno>
#include <chrono>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "Platform/Linux/Session/InstanceLockPath.h"
#include "Platform/Linux/Session/InstanceMessage.h"
#include "Platform/Linux/Session/InstanceObject.h"

namespace zephlin {

namespace {

using namespace std::chrono_literals;

/// How long an instance may take from its lock to its name on the bus.
constexpr auto timeout = 5s;
constexpr auto pause = 50ms;

struct flock wholeFileLock() {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return lock;
}

/// Not open, with errno set, where there is anything but a regular file.
FileDescriptor openLockFile(const std::string& path) {
  FileDescriptor file(
      ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
  struct stat status {};
  if (file.isOpen() && ::fstat(file.get(), &status) == 0 && !S_ISREG(status.st_mode)) {
    file.close();
    errno = EINVAL;
  }
  return file;
}

}  // namespace

RunningInstance::RunningInstance(SystemLog& log, std::function<void()> onActivate)
    : log_(log), object_(std::make_unique<InstanceObject>(std::move(onActivate))) {}

RunningInstance::~RunningInstance() = default;

bool RunningInstance::becomeTheInstance() {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  for (;;) {
    const auto holder = otherHolder();
    if (!holder) {
      answerOnTheBus();
      return true;
    }
    const InstanceReply reply = askToComeForward(*holder);
    if (reply == InstanceReply::Answered) {
      return false;
    }
    if (reply == InstanceReply::Unreachable || std::chrono::steady_clock::now() >= deadline) {
      log_.log("Zephlin: already running (process " + std::to_string(*holder) + ")");
      return false;
    }
    std::this_thread::sleep_for(pause);
  }
}

std::optional<pid_t> RunningInstance::otherHolder() {
  const std::string path = instanceLockPath(instanceBusName);
  if (!lockFile_.isOpen()) {
    lockFile_ = openLockFile(path);
  }
  while (lockFile_.isOpen()) {
    struct flock lock = wholeFileLock();
    if (::fcntl(lockFile_.get(), F_SETLK, &lock) == 0) {
      return std::nullopt;
    }
    const bool isHeld = errno == EACCES || errno == EAGAIN;
    if (!isHeld || ::fcntl(lockFile_.get(), F_GETLK, &lock) == -1) {
      break;
    }
    if (lock.l_type != F_UNLCK) {
      return lock.l_pid;
    }
  }
  log_.log("Zephlin: a second start will not be noticed: cannot lock " + path + ": " +
           std::generic_category().message(errno));
  return std::nullopt;
}

void RunningInstance::answerOnTheBus() {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    return;
  }
  bus.registerObject(instanceBusPath, object_.get(), QDBusConnection::ExportAllSlots);
  // A former instance that is about to end may still own the name; it comes to the next in line.
  // The answer is not waited for: whoever is started again is patient.
  constexpr uint noFlags = 0;
  auto request = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus", "RequestName");
  request << QString(instanceBusName) << noFlags;
  bus.send(request);
}

}  // namespace zephlin
