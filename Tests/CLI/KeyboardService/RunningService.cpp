#include "Tests/CLI/KeyboardService/RunningService.h"

#include <csignal>

namespace zephlin {

RunningService::RunningService(int virtualKeyboards, const test::TestProcess::Body& prepare)
    : process_({serviceProgram, "--socket", socketPath(), "--virtual-keyboards",
                std::to_string(virtualKeyboards)},
               prepare) {
  process_.waitForErrors("zephlin-hidd: ready on " + socketPath());
}

std::vector<std::string> RunningService::command(const std::vector<std::string>& arguments) const {
  std::vector<std::string> result{hidutilProgram, "--socket", socketPath()};
  result.insert(result.end(), arguments.begin(), arguments.end());
  return result;
}

test::Outcome RunningService::hidutil(const std::vector<std::string>& arguments) const {
  return test::run(command(arguments));
}

test::Outcome RunningService::stop() {
  process_.send(SIGTERM);
  return process_.wait();
}

test::Outcome failure(const std::string& message) {
  return {1, "", "hidutil: " + message + "\n"};
}

test::Outcome absence(const std::string& path, const std::string& reason) {
  return failure("no keyboard service at " + path + " (" + reason +
                 R"(); start it as root with "systemctl start zephlin-hidd.socket", or without )"
                 R"(systemd with "zephlin-hidd")");
}

}  // namespace zephlin
