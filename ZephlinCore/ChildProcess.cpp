#include "ZephlinCore/ChildProcess.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>
#include <vector>

extern char** environ;  // No header of macOS declares it.

namespace zephlin {

namespace {

void require(int error, const char* what) {
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), what);
  }
}

/// Owns posix_spawn's file actions.
struct FileActions {
  FileActions() : value() { require(::posix_spawn_file_actions_init(&value), "posix_spawn"); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { ::posix_spawn_file_actions_destroy(&value); }

  posix_spawn_file_actions_t value;
};

/// Owns posix_spawn's attributes.
struct Attributes {
  Attributes() : value() { require(::posix_spawnattr_init(&value), "posix_spawn"); }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { ::posix_spawnattr_destroy(&value); }

  posix_spawnattr_t value;
};

/// The system reaps the children of a process that ignores SIGCHLD or set SA_NOCLDWAIT, and their
/// statuses are lost.
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

/// Default dispositions and an empty mask.
void resetSignals(posix_spawnattr_t& attributes) {
  sigset_t signals;
  sigfillset(&signals);
  require(::posix_spawnattr_setsigdefault(&attributes, &signals), "posix_spawn");
  sigemptyset(&signals);
  require(::posix_spawnattr_setsigmask(&attributes, &signals), "posix_spawn");
  require(::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK),
          "posix_spawn");
}

std::vector<char*> argumentVector(const std::string& executable,
                                  std::span<const std::string> arguments) {
  std::vector<char*> vector;
  vector.reserve(arguments.size() + 2);
  // posix_spawn promises not to write to the strings; its type is older than const.
  vector.push_back(const_cast<char*>(executable.c_str()));
  for (const std::string& argument : arguments) {
    vector.push_back(const_cast<char*>(argument.c_str()));
  }
  vector.push_back(nullptr);
  return vector;
}

/// Reaps a child. Returns an error number or 0.
int waitFor(pid_t process, int& status) {
  while (::waitpid(process, &status, 0) == -1) {
    if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

/// macOS reports stopped children too, though we ask only for ended ones.
bool hasEnded(const siginfo_t& info) {
  return info.si_code == CLD_EXITED || info.si_code == CLD_KILLED || info.si_code == CLD_DUMPED;
}

}  // namespace

ChildProcess::ChildProcess(const std::string& executable, std::span<const std::string> arguments,
                           const FileDescriptor& output) {
  keepChildStatuses();
  FileActions actions;
  for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
    require(::posix_spawn_file_actions_adddup2(&actions.value, output.get(), stream),
            "posix_spawn");
  }
  Attributes attributes;
  resetSignals(attributes.value);
  require(inheritStandardDescriptorsOnly(actions.value, attributes.value), "posix_spawn");
  const std::vector<char*> vector = argumentVector(executable, arguments);
  require(::posix_spawn(&processIdentifier_, executable.c_str(), &actions.value, &attributes.value,
                        vector.data(), environ),
          executable.c_str());
}

ChildProcess::~ChildProcess() {
  if (processIdentifier_ == -1) {
    return;
  }
  if (isRunning()) {  // Once other code has reaped the child, the number may be another process's.
    kill();
  }
  int status = 0;
  waitFor(processIdentifier_, status);
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
  while (::waitid(P_PID, static_cast<id_t>(processIdentifier_), &info, WEXITED | WNOWAIT) == 0
             ? !hasEnded(info)
             : errno == EINTR) {
  }
}

std::int32_t ChildProcess::reap() {
  int status = 0;
  require(waitFor(std::exchange(processIdentifier_, -1), status), "waitpid");
  return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace zephlin
