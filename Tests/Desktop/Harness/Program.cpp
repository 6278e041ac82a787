#include "Tests/Desktop/Harness/Program.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <utility>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

void printTo(const std::string& logFile) {
  const FileDescriptor log(
      ::open(logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  ::dup2(log.get(), STDOUT_FILENO);
  ::dup2(log.get(), STDERR_FILENO);
}

}  // namespace

void becomeEnvironment(const Environment& environment) {
  ::clearenv();
  for (const auto& [name, value] : environment) {
    ::setenv(name.c_str(), value.c_str(), 1);
  }
}

Program::Program(const std::vector<std::string>& command, const Environment& environment,
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

Program::~Program() {
  ::kill(-id_, SIGKILL);
}

std::string Program::log() const {
  return contentOf(logFile_);
}

bool Program::hasPrinted(const std::string& text) const {
  return log().find(text) != std::string::npos;
}

void Program::waitForLog(const std::string& text) const {
  waitUntil("\"" + text + "\" in " + logFile_, [&] { return hasPrinted(text); });
}

bool Program::hasEnded() const {
  siginfo_t information{};
  return ::waitid(P_PID, static_cast<id_t>(id_), &information, WEXITED | WNOHANG | WNOWAIT) == -1 ||
         information.si_pid != 0;
}

int Program::waitForEnd() {
  waitUntil("the end of the program that logs to " + logFile_, [this] { return hasEnded(); });
  return process_.wait().status;
}

Outcome runIn(const Environment& environment, const std::vector<std::string>& command) {
  return TestProcess(command, [&] { becomeEnvironment(environment); }).wait();
}

}  // namespace zephlin::test
