#pragma once

#include <string>

#include "KeyboardService/Protocol/Messages.h"

namespace zephlin {

/// What is printed for each kind of answer: a table with one header line, or the RegistryID of the
/// keyboard that was plugged in, or nothing. ZephlinCore parses the tables.
std::string listing(const ListRequest& request, const ListResponse& response);
std::string listing(const GetRequest& request, const GetResponse& response);
std::string listing(const SetRequest& request, const SetResponse& response);
std::string listing(const PlugRequest& request, const PlugResponse& response);
std::string listing(const PullRequest& request, const PullResponse& response);

}  // namespace zephlin
