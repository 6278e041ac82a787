#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {

/// How long the client waits for the service, from connecting to the end of the response line.
constexpr std::chrono::seconds serviceTimeout{5};

/// Sends one request line to the service and returns its response line, both without line feed.
/// Blocks the calling thread for at most `serviceTimeout`. Throws RequestError if the request is
/// too long, if the service cannot be reached or is silent, or if its response is too long.
std::string askService(const std::string& socketPath, const std::string& requestLine);

/// The message for a response line that cannot be understood.
std::string misunderstoodService(const std::string& socketPath);

}  // namespace zephlin
