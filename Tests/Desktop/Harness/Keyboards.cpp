#include "Tests/Desktop/Harness/Keyboards.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {

Keyboards::Keyboards(const std::string& folder, const Environment& environment)
    : environment_(environment),
      service_({"/usr/bin/zephlin-hidd", "--virtual-keyboards", "2"}, environment,
               folder + "/hidd-" + std::to_string(monotonicSeconds()) + ".log") {
  service_.waitForLog("zephlin-hidd: ready");
}

std::string Keyboards::plug() const {
  const std::string output = ask({"plug"});
  return output.substr(0, output.find('\n'));
}

void Keyboards::pull(const std::string& identifier) const {
  ask({"pull", identifier});
}

std::vector<std::string> Keyboards::delays() const {
  std::istringstream listing(ask({"property", "--get", "CapsLockDelayOverride"}));
  std::string line;
  std::getline(listing, line);  // The head of the table.
  std::vector<std::string> result;
  for (std::string identifier, key, value; listing >> identifier >> key >> value;) {
    result.push_back(value);
  }
  return result;
}

bool Keyboards::allAre(const std::string& delay) const {
  const std::vector<std::string> all = delays();
  return !all.empty() &&
         std::all_of(all.begin(), all.end(), [&](const auto& each) { return each == delay; });
}

void Keyboards::waitUntilAllAre(const std::string& delay) const {
  waitUntil("every keyboard's delay to be " + delay, [&] { return allAre(delay); });
}

void Keyboards::setAll(int delay) const {
  ask({"property", "--set", R"({"CapsLockDelayOverride":)" + std::to_string(delay) + "}"});
}

std::string Keyboards::ask(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), HIDUTIL_PROGRAM);
  const Outcome outcome = runIn(environment_, arguments);
  if (outcome.status != 0) {
    throw std::runtime_error(outcome.errors);
  }
  return outcome.output;
}

}  // namespace zephlin::test
