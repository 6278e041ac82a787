#include "Platform/Linux/Session/LinuxSystemLog.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <csignal>
#include <exception>

#include "Platform/Linux/Session/LogEntry.h"

namespace zephlin {

namespace {

/// Keeps SIGPIPE from the calling thread, and takes one that a write has caused meanwhile.
class BrokenPipeSignalBlocked {
 public:
  BrokenPipeSignalBlocked() : pipeSignal_(), previous_() {
    ::sigemptyset(&pipeSignal_);
    ::sigaddset(&pipeSignal_, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipeSignal_, &previous_);
  }
  BrokenPipeSignalBlocked(const BrokenPipeSignalBlocked&) = delete;
  BrokenPipeSignalBlocked& operator=(const BrokenPipeSignalBlocked&) = delete;
  ~BrokenPipeSignalBlocked() {
    const timespec now{};
    while (::sigtimedwait(&pipeSignal_, nullptr, &now) == SIGPIPE) {
    }
    ::pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
  }

 private:
  sigset_t pipeSignal_;
  sigset_t previous_;
};

/// Others may write to the same pipe, so that it is full between asking and writing. Opened anew,
/// it need not block, and for nobody else does it change.
FileDescriptor openStandardError() {
  struct stat status {};
  if (::fstat(STDERR_FILENO, &status) == 0 && S_ISFIFO(status.st_mode)) {
    FileDescriptor pipe(::open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    if (pipe.isOpen()) {
      return pipe;
    }
  }
  return FileDescriptor(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

}  // namespace

LinuxSystemLog::LinuxSystemLog() : standardError_(openStandardError()) {
  ::openlog("Zephlin", LOG_PID, LOG_USER);
}

LinuxSystemLog::~LinuxSystemLog() {
  ::closelog();
}

void LinuxSystemLog::log(const std::string& text) {
  try {
    const std::string entry = logEntry(text, maximumBytes - 1);
    ::syslog(LOG_NOTICE, "%s", entry.c_str());
    writeToStandardError(entry + '\n');
  } catch (const std::exception&) {
    // Without memory for an entry there is none.
    return;
  }
}

void LinuxSystemLog::writeToStandardError(std::string_view line) {
  const std::scoped_lock guard(mutex_);
  const int file = standardError_.get();
  if (::send(file, line.data(), line.size(), MSG_DONTWAIT | MSG_NOSIGNAL) != -1 ||
      errno != ENOTSOCK) {
    return;
  }
  const BrokenPipeSignalBlocked blocked;
  pollfd request{file, POLLOUT, 0};
  if (::poll(&request, 1, 0) == 1 && ::write(file, line.data(), line.size()) == -1) {
    return;
  }
}

}  // namespace zephlin
