#pragma once

#include <string>

#include "KeyboardService/Protocol/Messages.h"

namespace zephlin {

/// What hidutil prints on standard output for a response: a table with one header line, or the
/// RegistryID of the keyboard that was plugged in, or nothing. Throws ResponseError if the response
/// is not of the request's kind, RequestError if it says that the request failed.
std::string listing(const Request& request, const Response& response);

}  // namespace zephlin
