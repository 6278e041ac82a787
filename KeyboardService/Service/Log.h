#pragma once

#include <functional>
#include <string>

namespace zephlin {

/// Takes one line, without line feed, for the service's log. What is typed is never logged.
using Log = std::function<void(const std::string& line)>;

/// Writes a line to standard error, as zephlin-hidd's. A line is lost if the reader has stalled:
/// a stalled log reader must not stall the keyboards.
void logToStandardError(const std::string& line);

}  // namespace zephlin
