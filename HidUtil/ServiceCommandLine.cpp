#include "HidUtil/ServiceCommandLine.h"

#include <charconv>

#include "HidUtil/Errors.h"
#include "HidUtil/PrintableText.h"
#include "HidUtil/Request.h"
#include "HidUtil/VirtualKeyboardBus.h"

namespace zephlin {

const std::string_view serviceHelp =
    R"(Usage: zephlin-hidd [--socket PATH] [--virtual-keyboards N]

Keeps the properties of the keyboards for hidutil, until it ends.

Options:
  --socket PATH           where to listen; /run/zephlin/hidd.sock without this option; not used
                          when systemd hands over the socket
  --virtual-keyboards N   start with N virtual keyboards, 0 to 256
  -h, --help              print this help
  --version               print the version
)";

namespace {

UsageError usageError(const std::string& what) {
  return UsageError(what + "; see zephlin-hidd --help");
}

std::size_t keyboardCount(const std::string& text) {
  std::size_t count = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, count);
  if (read.ec != std::errc{} || read.ptr != end || count > VirtualKeyboardBus::maximumKeyboards) {
    throw usageError("--virtual-keyboards takes a number from 0 to " +
                     std::to_string(VirtualKeyboardBus::maximumKeyboards) + ", not " +
                     inQuotes(text));
  }
  return count;
}

}  // namespace

ServiceOptions parseServiceCommandLine(const std::vector<std::string>& arguments) {
  ServiceOptions options{std::string(defaultSocketPath)};
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (*argument == "--help" || *argument == "-h") {
      options.showHelp = true;
      return options;
    }
    if (*argument == "--version") {
      options.showVersion = true;
      return options;
    }
    const bool isSocket = *argument == "--socket";
    if (!isSocket && *argument != "--virtual-keyboards") {
      throw usageError("unknown argument " + inQuotes(*argument));
    }
    if (argument + 1 == arguments.end()) {
      throw usageError("option " + *argument + " needs a value");
    }
    ++argument;
    if (isSocket) {
      options.socketPath = *argument;
    } else {
      options.virtualKeyboards = keyboardCount(*argument);
    }
  }
  return options;
}

}  // namespace zephlin
