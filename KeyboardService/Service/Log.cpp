#include "KeyboardService/Service/Log.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>

namespace zephlin {

void logToStandardError(const std::string& line) {
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
