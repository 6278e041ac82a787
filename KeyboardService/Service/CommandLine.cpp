#include "KeyboardService/Service/CommandLine.h"

#include <charconv>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Transport.h"
#include "KeyboardService/Service/VirtualKeyboardBus.h"

namespace zephlin {

const std::string_view serviceHelp =
    R"(Usage: zephlin-hidd [--socket PATH] [--state PATH] [--virtual-keyboards N]
                    [--tap-gap MS]
       zephlin-hidd --check [--socket PATH]

Keeps the properties of the keyboards for hidutil until it exits, and makes Caps Lock instant where
its delay is 0.

Options:
  --socket PATH           where to listen unless systemd passes a socket; /run/zephlin/hidd.sock by
                          default
  --state PATH            where to keep the properties for a restart before the machine's next start;
                          the socket's path with ".state" by default
  --virtual-keyboards N   start with N virtual keyboards, 0 to 256, instead of the machine's own
  --tap-gap MS            how many milliseconds Caps Lock of a grabbed keyboard stays down for
                          programs when its release is sent early, 0 to 50; 5 by default
  --check                 print how each keyboard of the machine will be handled, and exit
  -h, --help              print this help
  --version               print the version
)";

namespace {

UsageError usageError(const std::string& what) {
  return UsageError(what + "; see zephlin-hidd --help");
}

constexpr std::size_t maximumTapGap = 50;

std::size_t numberUpTo(std::size_t maximum, const std::string& option, const std::string& text) {
  std::size_t number = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc{} || read.ptr != end || number > maximum) {
    throw usageError(option + " takes a number from 0 to " + std::to_string(maximum) + ", not " +
                     inQuotes(text));
  }
  return number;
}

void setOption(ServiceOptions& options, const std::string& name, const std::string& value) {
  if (name == "--socket") {
    options.socketPath = value;
  } else if (name == "--state") {
    options.statePath = value;
  } else if (name == "--virtual-keyboards") {
    options.virtualKeyboards = numberUpTo(VirtualKeyboardBus::maximumKeyboards, name, value);
  } else {
    options.tapGap = std::chrono::milliseconds(numberUpTo(maximumTapGap, name, value));
  }
}

}  // namespace

ServiceOptions parseServiceCommandLine(const std::vector<std::string>& arguments) {
  ServiceOptions options;
  options.socketPath = defaultSocketPath;
  bool isForService = false;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (*argument == "--help" || *argument == "-h") {
      options.showHelp = true;
      return options;
    }
    if (*argument == "--version") {
      options.showVersion = true;
      return options;
    }
    if (*argument == "--check") {
      options.check = true;
      continue;
    }
    if (*argument != "--socket" && *argument != "--state" && *argument != "--virtual-keyboards" &&
        *argument != "--tap-gap") {
      throw usageError("unknown argument " + inQuotes(*argument));
    }
    if (argument + 1 == arguments.end()) {
      throw usageError("option " + *argument + " needs a value");
    }
    isForService = isForService || *argument != "--socket";
    ++argument;
    setOption(options, argument[-1], *argument);
  }
  if (options.check && isForService) {
    throw usageError("--check takes no option except --socket");
  }
  if (options.statePath.empty()) {
    options.statePath = options.socketPath + ".state";
  }
  return options;
}

}  // namespace zephlin
