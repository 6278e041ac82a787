#pragma once

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Tests/Desktop/Harness/Program.h"
#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {

/// The keyboard service with two virtual keyboards at its usual place, and those keyboards. This
/// class does not use the observed /usr/bin/hidutil.
class Keyboards {
 public:
  Keyboards(const std::string& folder, const Environment& environment)
      : environment_(environment),
        service_({"/usr/bin/zephlin-hidd", "--virtual-keyboards", "2"}, environment,
                 folder + "/hidd-" + std::to_string(monotonicSeconds()) + ".log") {
    service_.waitForLog("zephlin-hidd: ready");
  }

  /// Plugs one in and returns its identifier.
  std::string plug() const {
    const std::string output = ask({"plug"});
    return output.substr(0, output.find('\n'));
  }

  void pull(const std::string& identifier) const { ask({"pull", identifier}); }

  /// The Caps Lock delay of each keyboard, "(null)" for the system's own.
  [[nodiscard]] std::vector<std::string> delays() const {
    std::istringstream listing(ask({"property", "--get", "CapsLockDelayOverride"}));
    std::string line;
    std::getline(listing, line);  // The head of the table.
    std::vector<std::string> result;
    for (std::string identifier, key, value; listing >> identifier >> key >> value;) {
      result.push_back(value);
    }
    return result;
  }

  [[nodiscard]] bool allAre(const std::string& delay) const {
    const std::vector<std::string> all = delays();
    return !all.empty() &&
           std::all_of(all.begin(), all.end(), [&](const auto& each) { return each == delay; });
  }

  void waitUntilAllAre(const std::string& delay) const {
    waitUntil("every keyboard's delay to be " + delay, [&] { return allAre(delay); });
  }

  void setAll(int delay) const {
    ask({"property", "--set", R"({"CapsLockDelayOverride":)" + std::to_string(delay) + "}"});
  }

 private:
  std::string ask(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), HIDUTIL_PROGRAM);
    const Outcome outcome = runIn(environment_, arguments);
    if (outcome.status != 0) {
      throw std::runtime_error(outcome.errors);
    }
    return outcome.output;
  }

  Environment environment_;
  Program service_;
};

}  // namespace zephlin::test
