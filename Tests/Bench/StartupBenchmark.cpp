// StartupBenchmark PROGRAM YARDSTICK [SERVICE]
//
// Runs `PROGRAM status` and YARDSTICK in turn, both of which run /usr/bin/hidutil, and prints the
// ratios of wall time and peak memory, pair by pair. SERVICE is a keyboard service, which runs
// meanwhile for hidutil to ask.

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "Tests/Bench/Ratio.h"

namespace {

using zephlin::bench::report;
using zephlin::bench::reportRatio;
using Command = std::vector<const char*>;

constexpr int timedPairs = 500;
constexpr int weighedPairs = 20;

pid_t launch(Command command, bool traced = false) {
  command.push_back(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    if (traced) {
      ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    }
    ::execv(command.front(), const_cast<char* const*>(command.data()));
    ::_exit(127);
  }
  return child;
}

int waitFor(pid_t child) {
  int status = 0;
  if (::waitpid(child, &status, 0) != child) {
    throw std::system_error(errno, std::generic_category(), "waitpid");
  }
  return status;
}

double millisecondsOf(const Command& command) {
  const auto begin = std::chrono::steady_clock::now();
  if (waitFor(launch(command)) != 0) {
    throw std::runtime_error(std::string(command.front()) + " failed");
  }
  const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - begin;
  return wall.count();
}

double peakMemoryNow(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("VmHWM:")) {
      return std::stod(line.substr(6));
    }
  }
  throw std::runtime_error("no VmHWM");
}

/// Peak resident memory of the program without its child, as the kernel has it when the program is
/// about to exit. (A child's ru_maxrss starts at that of its parent.)
double kibibytesOf(const Command& command) {
  const pid_t child = launch(command, true);
  waitFor(child);  // Stopped at its execve.
  ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_EXITKILL);
  double peak = 0;
  int signal = 0;
  for (;;) {
    ::ptrace(PTRACE_CONT, child, nullptr, signal);
    const int status = waitFor(child);
    if (!WIFSTOPPED(status)) {
      return peak;
    }
    const bool exits = status >> 8 == (SIGTRAP | PTRACE_EVENT_EXIT << 8);
    signal = exits ? 0 : WSTOPSIG(status);
    if (exits) {
      peak = peakMemoryNow(child);
    }
  }
}

void measure(const Command& subject, const Command& yardstick) {
  std::vector<double> subjectTime, yardstickTime, subjectMemory, yardstickMemory;
  millisecondsOf(subject);
  millisecondsOf(yardstick);
  for (int pair = 0; pair < timedPairs; ++pair) {
    subjectTime.push_back(millisecondsOf(subject));
    yardstickTime.push_back(millisecondsOf(yardstick));
  }
  for (int pair = 0; pair < weighedPairs; ++pair) {
    subjectMemory.push_back(kibibytesOf(subject));
    yardstickMemory.push_back(kibibytesOf(yardstick));
  }
  report("Zephlin status", subjectTime, "ms");
  report("minimal program", yardstickTime, "ms");
  reportRatio("wall time, Zephlin / minimal", subjectTime, yardstickTime);
  reportRatio("peak memory, Zephlin / minimal", subjectMemory, yardstickMemory);
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc < 3) {
    std::fputs("usage: StartupBenchmark PROGRAM YARDSTICK [SERVICE]\n", stderr);
    return 64;
  }
  std::fprintf(stderr, "Zephlin status, hidutil being %s\n",
               argc > 3 ? "the real one" : "a program that prints three rows");
  // The programs' output does not matter here.
  ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
  pid_t service = -1;
  if (argc > 3) {
    service = launch({argv[3], "--virtual-keyboards", "3"});
    while (waitFor(launch({"/usr/bin/hidutil", "list"})) != 0) {
    }
  }
  measure({argv[1], "status"}, {argv[2]});
  if (service != -1) {
    ::kill(service, SIGTERM);
    waitFor(service);
  }
  return 0;
}
