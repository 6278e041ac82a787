#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "KeyboardService/Protocol/Messages.h"

namespace zephlin {

struct ShowHelp {};
struct ShowVersion {};

/// One request to the service that listens at a path.
struct Invocation {
  std::string socketPath;
  Request request;
};

using Command = std::variant<ShowHelp, ShowVersion, Invocation>;

/// Reads the arguments after the program's name. Throws UsageError if they do not make a command,
/// RequestError if they do but a value among them is not valid.
Command parseCommandLine(const std::vector<std::string>& arguments);

/// What --help prints.
extern const std::string_view commandHelp;

}  // namespace zephlin
