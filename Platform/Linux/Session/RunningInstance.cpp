#include "Platform/Linux/Session/RunningInstance.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>
#include <cerrno>
#include <chrono>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "Platform/Linux/Session/InstanceLock.h"

namespace zephlin {

namespace {

// As GLib's applications name them: for Wayland and X11. Newer launchers give the same in both.
constexpr const char* tokenKey = "activation-token";
constexpr const char* startupIdKey = "desktop-startup-id";

QString tokenIn(const QVariantMap& platformData) {
  const QString token = platformData.value(tokenKey).toString();
  return token.isEmpty() ? platformData.value(startupIdKey).toString() : token;
}

QVariantMap platformDataWith(const QString& activationToken) {
  if (activationToken.isEmpty()) {
    return {};
  }
  return {{tokenKey, activationToken}, {startupIdKey, activationToken}};
}

}  // namespace

/// What the running instance answers to. There are no files, so opening files just comes forward.
class InstanceObject final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  explicit InstanceObject(std::function<void(const InstanceRequest&)> onRequest)
      : onRequest_(std::move(onRequest)) {}

 public Q_SLOTS:
  /// Answers at once: coming forward may take as long as an alert is open.
  void Activate(const QVariantMap& platformData) { ActivateAction({}, {}, platformData); }
  void Open(const QStringList& /*addresses*/, const QVariantMap& platformData) {
    Activate(platformData);
  }
  void ActivateAction(const QString& action, const QVariantList& /*parameters*/,
                      const QVariantMap& platformData) {
    QTimer::singleShot(0, this, [this, request = InstanceRequest{action, tokenIn(platformData)}] {
      onRequest_(request);
    });
  }

 private:
  std::function<void(const InstanceRequest&)> onRequest_;
};

namespace {

using namespace std::chrono_literals;

/// How long an instance may take from its lock to its name on the bus.
constexpr auto timeout = 5s;
constexpr auto pause = 50ms;
constexpr int replyMilliseconds = 5000;

/// Not open, with errno set, if there is anything but a regular file.
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

enum class InstanceReply {
  Answered,
  /// It does not own its name yet.
  NotThereYet,
  /// There is no bus, or no answer.
  Unreachable
};

/// Blocks for a few seconds at most.
InstanceReply send(const InstanceRequest& request, pid_t instance) {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    return InstanceReply::Unreachable;
  }
  // A process that is about to end may still own the name; only the lock's holder is the instance.
  const QDBusReply<uint> owner = bus.interface()->servicePid(instanceBusName);
  if (!owner.isValid() || static_cast<pid_t>(owner.value()) != instance) {
    return InstanceReply::NotThereYet;
  }
  const bool isAction = !request.action.isEmpty();
  auto message =
      QDBusMessage::createMethodCall(instanceBusName, instanceBusPath, instanceBusInterface,
                                     isAction ? "ActivateAction" : "Activate");
  message.setAutoStartService(false);
  if (isAction) {
    message << request.action << QVariantList();
  }
  message << platformDataWith(request.activationToken);
  const QDBusMessage reply = bus.call(message, QDBus::Block, replyMilliseconds);
  return reply.type() == QDBusMessage::ReplyMessage ? InstanceReply::Answered
                                                    : InstanceReply::Unreachable;
}

}  // namespace

RunningInstance::RunningInstance(SystemLog& log,
                                 std::function<void(const InstanceRequest&)> onRequest)
    : log_(log), object_(std::make_unique<InstanceObject>(std::move(onRequest))) {}

RunningInstance::~RunningInstance() = default;

bool RunningInstance::becomeTheInstance(const InstanceRequest& request) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  for (;;) {
    const auto holder = otherHolder();
    if (!holder) {
      answerOnTheBus();
      return true;
    }
    const InstanceReply reply = send(request, *holder);
    if (reply == InstanceReply::Answered) {
      return false;
    }
    if (reply == InstanceReply::Unreachable || std::chrono::steady_clock::now() >= deadline) {
      log_.log("Zephlin: already running with PID " + std::to_string(*holder));
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
  // A former instance that is about to end may still own the name; the bus passes it on then. No
  // need to wait for the answer: the next start asks again until the name is there.
  constexpr uint noFlags = 0;
  auto request = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus", "RequestName");
  request << QString(instanceBusName) << noFlags;
  bus.send(request);
}

}  // namespace zephlin

#include "RunningInstance.moc"
