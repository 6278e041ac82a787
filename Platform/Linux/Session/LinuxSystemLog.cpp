#include "Platform/Linux/Session/LinuxSystemLog.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <QString>
#include <csignal>
#include <cstdlib>
#include <exception>

namespace zephlin {

namespace {

/// Blocks SIGPIPE for the calling thread, and takes one that a write has caused meanwhile.
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

/// Others may write to the same pipe, so that it fills up between asking and writing. Opened again,
/// it can be made not to block without changing it for anybody else.
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

constexpr std::string_view indentedLine = "\n    ";
constexpr std::string_view ellipsis = "…";

bool isControl(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F;
}

bool isContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
}

std::string_view withoutLineFeedsAtEnd(std::string_view text) {
  const auto last = text.find_last_not_of("\r\n");
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

SystemLog* currentLog = nullptr;

/// The last messages of Qt's xcb and Wayland platforms before they end the process (Qt 6.4,
/// QXcbConnection::processXcbEvents, QWaylandDisplay::checkError).
bool isAboutLostDisplay(const QString& message) {
  return message.startsWith("The X11 connection broke") ||
         message.startsWith("The Wayland connection broke");
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
    // Out of memory: there is no entry.
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

std::string logEntry(std::string_view text, std::size_t maximumBytes) {
  std::string entry;
  for (const char character : withoutLineFeedsAtEnd(text)) {
    if (entry.size() > maximumBytes) {
      break;
    }
    if (character == '\n') {
      entry += indentedLine;
    } else {
      entry += isControl(character) && character != '\t' ? '?' : character;
    }
  }
  if (entry.size() > maximumBytes) {
    std::size_t end = maximumBytes - ellipsis.size();
    while (end > 0 && isContinuation(entry[end])) {
      --end;
    }
    entry.replace(end, std::string::npos, ellipsis);
  }
  return entry;
}

QtMessages::QtMessages(SystemLog& log) : previous_(nullptr) {
  currentLog = &log;
  previous_ = qInstallMessageHandler(handle);
}

QtMessages::~QtMessages() {
  qInstallMessageHandler(previous_);
}

void QtMessages::handle(QtMsgType type, const QMessageLogContext& /*context*/,
                        const QString& message) {
  if (type == QtDebugMsg || type == QtInfoMsg) {
    return;
  }
  currentLog->log("Zephlin: " + message.toStdString());
  if (isAboutLostDisplay(message)) {
    // Shutting down would ask the display; the kernel frees everything else.
    std::_Exit(EXIT_SUCCESS);
  }
}

}  // namespace zephlin
