#pragma once

#include <chrono>
#include <csignal>
#include <ctime>
#include <string>
#include <vector>

#include "KeyboardService/Protocol/Container.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"
#include "Tests/Unit/KeyboardService/Support/RawClient.h"

namespace zephlin {

inline const std::string hidutilProgram = HIDUTIL_PROGRAM;
inline const std::string serviceProgram = SERVICE_PROGRAM;

/// A zephlin-hidd that is ready, on a socket of its own.
class RunningService {
 public:
  explicit RunningService(
      int virtualKeyboards = 2, const test::TestProcess::Body& prepare = [] {})
      : process_({serviceProgram, "--socket", socketPath(), "--virtual-keyboards",
                  std::to_string(virtualKeyboards)},
                 prepare) {
    process_.waitForErrors("zephlin-hidd: ready on " + socketPath());
  }

  [[nodiscard]] std::string socketPath() const { return directory_.file("hidd.sock"); }
  [[nodiscard]] test::TestProcess& process() { return process_; }
  [[nodiscard]] RawClient connect() const { return RawClient(socketPath()); }

  /// hidutil's arguments, with the program and this service's socket before them.
  [[nodiscard]] std::vector<std::string> command(const std::vector<std::string>& arguments) const {
    std::vector<std::string> result{hidutilProgram, "--socket", socketPath()};
    result.insert(result.end(), arguments.begin(), arguments.end());
    return result;
  }

  /// Runs hidutil against this service.
  [[nodiscard]] test::Outcome hidutil(const std::vector<std::string>& arguments) const {
    return test::run(command(arguments));
  }

  /// The share of a processor that the service uses during `action`.
  template <typename Action>
  double processorShare(const Action& action) const {
    const auto start = std::chrono::steady_clock::now();
    const auto before = processorTime();
    action();
    const auto used = processorTime() - before;
    return std::chrono::duration<double>(used) / (std::chrono::steady_clock::now() - start);
  }

  /// Ends the service with SIGTERM.
  test::Outcome stop() {
    process_.send(SIGTERM);
    return process_.wait();
  }

 private:
  [[nodiscard]] std::chrono::nanoseconds processorTime() const {
    clockid_t clock{};
    ::clock_getcpuclockid(process_.id(), &clock);
    timespec time{};
    ::clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  }

  test::TemporaryDirectory directory_;
  test::TestProcess process_;
};

/// What hidutil does when it fails: status 1 and one line.
inline test::Outcome failure(const std::string& message) {
  return {1, "", "hidutil: " + message + "\n"};
}

/// What hidutil says when nobody listens at a path, in a container or not.
inline std::string absenceText(const std::string& path, const std::string& reason) {
  const auto advice = containerAdvice();
  return "no keyboard service at " + path + " (" + reason + "); " +
         (advice ? *advice + R"(, or start "zephlin-hidd" here if this container has /dev/input)"
                 : R"(start it as root with "systemctl start zephlin-hidd.socket", or without )"
                   R"(systemd with "zephlin-hidd")");
}

inline test::Outcome absence(const std::string& path, const std::string& reason) {
  return failure(absenceText(path, reason));
}

}  // namespace zephlin
