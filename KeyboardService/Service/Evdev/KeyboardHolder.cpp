#include "KeyboardService/Service/Evdev/KeyboardHolder.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <span>
#include <string_view>
#include <system_error>
#include <vector>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

using std::filesystem::path;

/// Programs that open keyboards without grabbing them.
constexpr std::string_view displayServers[] = {"Xorg", "X",      "gnome-shell",    "kwin_wayland",
                                               "sway", "weston", "systemd-logind", "seatd"};

/// Programs that grab keyboards; the kernel cuts names after fifteen bytes.
constexpr std::string_view remappers[] = {
    "evremap", "evsieve", "input-remapper-", "intercept", "kanata",       "keyd",
    "kmonad",  "udevmon", "xkeysnail",       "xremap",    "zephlin-hidd",
};

struct Process {
  std::string number;
  std::string name;
  bool hasNode = false;
  bool hasUinput = false;
};

std::vector<path> entries(const path& folder) {
  std::vector<path> result;
  std::error_code error;
  for (std::filesystem::directory_iterator each(folder, error), end; each != end && !error;
       each.increment(error)) {
    result.push_back(each->path());
  }
  return result;
}

Process describe(const path& folder, const std::string& node) {
  Process process{folder.filename(), "", false, false};
  std::ifstream name(folder / "comm");
  std::getline(name, process.name);
  for (const path& descriptor : entries(folder / "fd")) {
    std::error_code error;
    const path target = std::filesystem::read_symlink(descriptor, error);
    process.hasNode = process.hasNode || target == node;
    process.hasUinput = process.hasUinput || target == "/dev/uinput";
  }
  return process;
}

std::vector<Process> otherProcesses(const path& processes, const std::string& node) {
  std::vector<Process> others;
  for (const path& folder : entries(processes)) {
    const std::string number = folder.filename();
    if (number.find_first_not_of("0123456789") == std::string::npos &&
        number != std::to_string(::getpid())) {
      others.push_back(describe(folder, node));
    }
  }
  return others;
}

bool isIn(std::span<const std::string_view> names, const Process& process) {
  return std::find(names.begin(), names.end(), process.name) != names.end();
}

/// The only process that meets a condition.
template <typename Condition>
const Process* only(const std::vector<Process>& processes, Condition condition) {
  const auto first = std::find_if(processes.begin(), processes.end(), condition);
  return first == processes.end() ||
                 std::find_if(first + 1, processes.end(), condition) != processes.end()
             ? nullptr
             : &*first;
}

std::string toText(const Process& process) {
  return printable(process.name) + " (pid " + process.number + ")";
}

}  // namespace

std::string holderOf(const std::string& node, const path& processes) {
  const std::vector<Process> others = otherProcesses(processes, node);
  const Process* found =
      only(others, [](const Process& each) { return each.hasNode && each.hasUinput; });
  if (found == nullptr) {
    found = only(others,
                 [](const Process& each) { return each.hasNode && !isIn(displayServers, each); });
  }
  if (found != nullptr) {
    return ": " + toText(*found);
  }
  found = only(others, [](const Process& each) { return isIn(remappers, each); });
  return found == nullptr ? "" : ", probably " + toText(*found);
}

}  // namespace zephlin
