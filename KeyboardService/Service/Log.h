#pragma once

#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>

namespace zephlin {

/// Takes one line, without line feed, for the service's log. What is typed is never logged.
using Log = std::function<void(const std::string& line)>;

/// Writes a line to standard error as zephlin-hidd's. The line is lost if nobody reads: a stalled
/// log reader must not stall the keyboards.
inline void logToStandardError(const std::string& line) {
  constexpr int timeoutMilliseconds = 100;
  static bool isStalled = false;
  pollfd standardError{STDERR_FILENO, POLLOUT, 0};
  isStalled = ::poll(&standardError, 1, isStalled ? 0 : timeoutMilliseconds) == 0;
  if (isStalled) {
    return;
  }
  // One write for the whole line, so that it stays whole among other programs' lines.
  const std::string text = "zephlin-hidd: " + line + '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
}

}  // namespace zephlin
