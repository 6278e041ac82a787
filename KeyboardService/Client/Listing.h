#pragma once

#include <string>
#include <vector>

#include "KeyboardService/Protocol/Messages.h"

namespace zephlin {

/// Left-aligned columns; all rows have the same number of cells. The last column is not padded, so
/// no line ends in spaces that a cell did not bring.
std::string table(const std::vector<std::vector<std::string>>& rows);

/// What is printed for each kind of answer: a table with one header line, or the RegistryID of the
/// keyboard that was plugged in, or nothing. ZephlinCore parses the tables. A set that has failed
/// prints none.
std::string listing(const ListRequest& request, const ListResponse& response);
std::string listing(const GetRequest& request, const GetResponse& response);
std::string listing(const SetRequest& request, const SetResponse& response);
std::string listing(const PlugRequest& request, const PlugResponse& response);
std::string listing(const PullRequest& request, const PullResponse& response);

/// What is wrong with each keyboard that does not do as asked, in a line each.
std::vector<std::string> complaints(const SetResponse& response);

/// Whether keyboards matched, and none of them does as asked.
bool hasFailed(const SetResponse& response);

}  // namespace zephlin
