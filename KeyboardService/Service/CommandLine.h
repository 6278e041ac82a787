#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zephlin {

struct ServiceOptions {
  std::string socketPath;
  std::string statePath;
  std::optional<std::size_t> virtualKeyboards;  ///< In place of the machine's keyboards.
  std::chrono::milliseconds tapGap{5};
  bool check = false;
  bool showHelp = false;
  bool showVersion = false;
};

/// Reads the arguments after the program's name. Throws UsageError.
ServiceOptions parseServiceCommandLine(const std::vector<std::string>& arguments);

/// What --help prints.
extern const std::string_view serviceHelp;

}  // namespace zephlin
