#include "ZephlinCore/ChildProcess.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstring>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "ZephlinCore/SignalMask.h"

namespace zephlin {

namespace {

/// Room for descriptors that other threads open between the count and the fork.
constexpr int descriptorReserve = 128;
/// Taken where the system does not list a process's descriptors (no /proc in a bare chroot).
constexpr int assumedDescriptorLimit = 65536;

struct DirectoryCloser {
  void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};

/// A number above every open descriptor. Descriptors are handed out lowest first, so this is small
/// even where the process may open a thousand million of them.
int descriptorLimit() {
  const std::unique_ptr<DIR, DirectoryCloser> directory(::opendir("/dev/fd"));
  if (!directory) {
    return assumedDescriptorLimit;
  }
  int highest = 0;
  while (const dirent* entry = ::readdir(directory.get())) {
    int descriptor = 0;
    const char* const end = entry->d_name + std::strlen(entry->d_name);
    std::from_chars(entry->d_name, end, descriptor);
    highest = std::max(highest, descriptor);
  }
  return highest + descriptorReserve;
}

/// A process that ignores SIGCHLD, or asked for no zombies, has its children reaped by the system,
/// and their statuses are lost.
void keepChildStatuses() {
  struct sigaction action {};
  ::sigaction(SIGCHLD, nullptr, &action);
  const bool ignored = action.sa_handler == SIG_IGN;
  if (!ignored && (action.sa_flags & SA_NOCLDWAIT) == 0) {
    return;
  }
  if (ignored) {
    action.sa_handler = SIG_DFL;
  }
  action.sa_flags &= ~SA_NOCLDWAIT;
  ::sigaction(SIGCHLD, &action, nullptr);
}

/// All that the child needs, made before the fork: behind it, in a process that has threads, only
/// async-signal-safe functions may be called (POSIX, fork).
struct Launch {
  const char* executable;
  char* const* arguments;
  int output;
  int errorReport;
  int descriptorLimit;
};

void resetSignals() {
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  for (int signal = 1; signal < NSIG; ++signal) {
    ::sigaction(signal, &action, nullptr);  // Fails for those that cannot be caught anyway.
  }
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// The child's side of the fork. Every signal is blocked when it begins.
[[noreturn]] void becomeExecutable(const Launch& launch) {
  if (::dup2(launch.output, STDOUT_FILENO) != -1 && ::dup2(launch.output, STDERR_FILENO) != -1) {
    for (int descriptor = STDERR_FILENO + 1; descriptor < launch.descriptorLimit; ++descriptor) {
      ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
    resetSignals();
    ::execv(launch.executable, launch.arguments);
  }
  const int error = errno;
  // Nobody is left to be told should this fail; the parent then sees a child that exits with 127.
  [[maybe_unused]] const ssize_t count = ::write(launch.errorReport, &error, sizeof error);
  ::_exit(127);
}

/// Waits until the child has become its executable, which closes the pipe; returns the error number
/// of a failure, or 0.
int readErrorReport(const FileDescriptor& report) {
  int error = 0;
  while (::read(report.get(), &error, sizeof error) == -1 && errno == EINTR) {
  }
  return error;
}

std::vector<char*> argumentVector(const std::string& executable,
                                  std::span<const std::string> arguments) {
  std::vector<char*> vector;
  vector.reserve(arguments.size() + 2);
  // execv promises not to write to the strings; its type is older than const.
  vector.push_back(const_cast<char*>(executable.c_str()));
  for (const std::string& argument : arguments) {
    vector.push_back(const_cast<char*>(argument.c_str()));
  }
  vector.push_back(nullptr);
  return vector;
}

/// macOS reports a stopped child too, though only ended ones are asked for.
bool hasEnded(const siginfo_t& info) {
  return info.si_code == CLD_EXITED || info.si_code == CLD_KILLED || info.si_code == CLD_DUMPED;
}

}  // namespace

ChildProcess::ChildProcess(const std::string& executable, std::span<const std::string> arguments,
                           const FileDescriptor& output) {
  keepChildStatuses();
  Pipe report = makePipe();
  const std::vector<char*> vector = argumentVector(executable, arguments);
  const Launch launch{executable.c_str(), vector.data(), output.get(), report.writeEnd.get(),
                      descriptorLimit()};
  {
    // A handler of this process must not run in the child before the dispositions are reset.
    const AllSignalsBlocked blocked;
    processIdentifier_ = ::fork();
    if (processIdentifier_ == 0) {
      becomeExecutable(launch);
    }
  }
  if (processIdentifier_ == -1) {
    throw std::system_error(errno, std::generic_category(), executable);
  }
  report.writeEnd.close();
  if (const int error = readErrorReport(report.readEnd)) {
    reap();
    throw std::system_error(error, std::generic_category(), executable);
  }
}

ChildProcess::~ChildProcess() {
  if (processIdentifier_ == -1) {
    return;
  }
  kill();
  while (::waitpid(processIdentifier_, nullptr, 0) == -1 && errno == EINTR) {
  }
}

bool ChildProcess::isRunning() const {
  siginfo_t info{};
  return ::waitid(P_PID, static_cast<id_t>(processIdentifier_), &info,
                  WEXITED | WNOHANG | WNOWAIT) == 0 &&
         !hasEnded(info);
}

void ChildProcess::kill() const {
  ::kill(processIdentifier_, SIGKILL);
}

void ChildProcess::waitUntilExit() const {
  siginfo_t info{};
  while (!hasEnded(info)) {
    if (::waitid(P_PID, static_cast<id_t>(processIdentifier_), &info, WEXITED | WNOWAIT) == -1 &&
        errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "waitid");
    }
  }
}

std::int32_t ChildProcess::reap() {
  int status = 0;
  while (::waitpid(processIdentifier_, &status, 0) == -1) {
    if (errno != EINTR) {
      processIdentifier_ = -1;
      throw std::system_error(errno, std::generic_category(), "waitpid");
    }
  }
  processIdentifier_ = -1;
  return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace zephlin
