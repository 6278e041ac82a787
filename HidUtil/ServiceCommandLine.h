#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zephlin {

struct ServiceOptions {
  std::string socketPath;
  std::size_t virtualKeyboards = 0;
  bool showHelp = false;
  bool showVersion = false;
};

/// Reads the arguments after the program's name. Throws UsageError.
ServiceOptions parseServiceCommandLine(const std::vector<std::string>& arguments);

/// What --help prints.
extern const std::string_view serviceHelp;

}  // namespace zephlin
