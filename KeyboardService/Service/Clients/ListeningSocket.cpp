#include "KeyboardService/Service/Clients/ListeningSocket.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {
namespace {

constexpr mode_t directoryMode = 0755;
constexpr mode_t everyoneMayConnect = 0666;

/// Clients are accepted in their order, so a user that fills a long queue delays all the others.
/// The socket unit says the same.
constexpr int maximumWaitingClients = 128;

/// Sets the umask, so that the caller's does not narrow the mode of what is created.
class FileCreationMask {
 public:
  explicit FileCreationMask(mode_t mask) : former_(::umask(mask)) {}
  FileCreationMask(const FileCreationMask&) = delete;
  FileCreationMask& operator=(const FileCreationMask&) = delete;
  ~FileCreationMask() { ::umask(former_); }

 private:
  mode_t former_;
};

std::string directoryOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) {
    return ".";
  }
  return slash == 0 ? "/" : path.substr(0, slash);
}

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

FileDescriptor streamSocket() {
  FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket.isOpen()) {
    throw RequestError("cannot create a socket" + errnoText(errno) + "; close some programs");
  }
  return socket;
}

/// Whether a process that does not hold our lock, such as systemd, listens at the address.
bool isListenedAt(const SocketAddress& address) {
  const FileDescriptor probe = streamSocket();
  return ::connect(probe.get(), address.get(), address.size()) == 0 || errno == EAGAIN;
}

void clearPath(const std::string& path, const SocketAddress& address) {
  struct stat found {};
  if (::lstat(path.c_str(), &found) != 0) {
    return;
  }
  if (!S_ISSOCK(found.st_mode)) {
    throw RequestError(printable(path) +
                       " exists and is not a socket; move it away or choose another place with "
                       "--socket");
  }
  if (isListenedAt(address)) {
    throw RequestError("another instance is running on " + printable(path) + "; stop it first");
  }
  ::unlink(path.c_str());
}

void bindAndListen(const FileDescriptor& socket, const std::string& path,
                   const SocketAddress& address) {
  const FileCreationMask mask(static_cast<mode_t>(~everyoneMayConnect) & 0777U);
  if (::bind(socket.get(), address.get(), address.size()) != 0 ||
      ::listen(socket.get(), maximumWaitingClients) != 0) {
    throw RequestError("cannot listen at " + printable(path) + errnoText(errno) +
                       "; run zephlin-hidd as root, or choose another place with --socket");
  }
}

}  // namespace

SocketDirectory::SocketDirectory(const std::string& socketPath) : path_(directoryOf(socketPath)) {
  const FileCreationMask mask(static_cast<mode_t>(~directoryMode) & 0777U);
  made_ = ::mkdir(path_.c_str(), directoryMode) == 0;
  if (!made_ && errno != EEXIST) {
    throw RequestError("cannot create the directory " + printable(path_) + errnoText(errno) +
                       "; run zephlin-hidd as root, or choose another place with --socket");
  }
}

SocketDirectory::~SocketDirectory() {
  if (made_) {
    ::rmdir(path_.c_str());
  }
}

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

BoundSocket::BoundSocket(const std::string& path)
    : path_(path), address_(path), directory_(path), lock_(path), descriptor_(streamSocket()) {
  clearPath(path, address_);
  bindAndListen(descriptor_, path, address_);
  struct stat bound {};
  if (::lstat(path.c_str(), &bound) == 0) {
    device_ = bound.st_dev;
    inode_ = bound.st_ino;
  }
}

BoundSocket::~BoundSocket() {
  struct stat found {};
  if (::lstat(path_.c_str(), &found) == 0 && found.st_dev == device_ && found.st_ino == inode_) {
    ::unlink(path_.c_str());
  }
}

std::optional<FileDescriptor> takeActivationSocket() {
  const int count = sd_listen_fds(1);
  if (count == 0) {
    return std::nullopt;
  }
  if (count != 1 || sd_is_socket_unix(SD_LISTEN_FDS_START, SOCK_STREAM, 1, nullptr, 0) <= 0) {
    throw RequestError(
        "socket activation needs exactly one listening Unix stream socket; fix the socket unit");
  }
  FileDescriptor socket(SD_LISTEN_FDS_START);
  ::fcntl(socket.get(), F_SETFL, ::fcntl(socket.get(), F_GETFL) | O_NONBLOCK);
  return socket;
}

std::string boundPath(const FileDescriptor& socket) {
  sockaddr_un address{};
  socklen_t size = sizeof address;
  // The kernel ends the path with a NUL only if there is room for one.
  ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size);
  return printable({address.sun_path, ::strnlen(address.sun_path, sizeof address.sun_path)});
}

}  // namespace zephlin
