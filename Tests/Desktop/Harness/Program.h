#pragma once

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Tests/Desktop/Harness/Waiting.h"
#include "Tests/Support/Files.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin::test {

inline void printTo(const std::string& logFile) {
  const FileDescriptor log(
      ::open(logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  ::dup2(log.get(), STDOUT_FILENO);
  ::dup2(log.get(), STDERR_FILENO);
}

using Environment = std::map<std::string, std::string>;

inline Environment merged(Environment under, const Environment& over) {
  for (const auto& [name, value] : over) {
    under[name] = value;
  }
  return under;
}

/// Replaces the environment of this process; for a child before it executes a program.
inline void becomeEnvironment(const Environment& environment) {
  ::clearenv();
  for (const auto& [name, value] : environment) {
    ::setenv(name.c_str(), value.c_str(), 1);
  }
}

/// A program that runs beside the test in a process group of its own, with exactly this
/// environment. What it prints is appended to a file. The whole group is killed at the end, and the
/// program also when the test dies.
class Program {
 public:
  Program(const std::vector<std::string>& command, const Environment& environment,
          std::string logFile)
      : logFile_(std::move(logFile)),
        process_(command,
                 [&] {
                   ::setpgid(0, 0);
                   ::prctl(PR_SET_PDEATHSIG, SIGKILL);
                   printTo(logFile_);
                   becomeEnvironment(environment);
                 }),
        id_(process_.id()) {}

  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() { ::kill(-id_, SIGKILL); }

  [[nodiscard]] pid_t id() const { return id_; }
  void send(int signalNumber) const { process_.send(signalNumber); }

  /// What it has printed so far.
  [[nodiscard]] std::string log() const { return contentOf(logFile_); }

  [[nodiscard]] bool hasPrinted(const std::string& text) const {
    return log().find(text) != std::string::npos;
  }

  void waitForLog(const std::string& text) const {
    waitUntil("\"" + text + "\" in " + logFile_, [&] { return hasPrinted(text); });
  }

  [[nodiscard]] bool hasEnded() const {
    siginfo_t information{};
    return ::waitid(P_PID, static_cast<id_t>(id_), &information, WEXITED | WNOHANG | WNOWAIT) ==
               -1 ||
           information.si_pid != 0;
  }

  /// Waits for the end and returns the exit status, or minus the signal's number. Call once.
  int waitForEnd() {
    waitUntil("the end of the program that logs to " + logFile_, [this] { return hasEnded(); });
    return process_.wait().status;
  }

 private:
  std::string logFile_;
  TestProcess process_;
  pid_t id_;
};

/// Runs a program to its end with exactly this environment.
inline Outcome runIn(const Environment& environment, const std::vector<std::string>& command) {
  return TestProcess(command, [&] { becomeEnvironment(environment); }).wait();
}

}  // namespace zephlin::test
