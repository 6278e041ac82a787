#pragma once

#include <string>
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

/// What hidutil prints on standard output for a response. Throws RequestError if the response says
/// that the request failed, ResponseError if it is a response to something else.
std::string listing(const Request& request, const Response& response);

/// What --help prints.
std::string commandHelp();

}  // namespace zephlin
