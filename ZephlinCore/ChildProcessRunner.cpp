#include "ZephlinCore/ChildProcessRunner.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "ZephlinCore/ChildProcess.h"
#include "ZephlinCore/FileDescriptor.h"
#include "ZephlinCore/TimeoutFlag.h"
#include "ZephlinCore/Watchdog.h"

namespace zephlin {

namespace {

using Clock = std::chrono::steady_clock;

/// Waits for something to read, or for the end of file; false once the deadline has passed.
bool waitUntilReadable(const FileDescriptor& descriptor, Clock::time_point deadline) {
  for (;;) {
    const auto remaining = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (remaining.count() <= 0) {
      return false;
    }
    pollfd request{descriptor.get(), POLLIN, 0};
    const int ready = ::poll(&request, 1, static_cast<int>(remaining.count()));
    if (ready > 0) {
      return true;
    }
    if (ready == -1 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "poll");
    }
  }
}

/// Removes the last character if it is not ASCII, for it may be half of one.
void trimPartialCharacter(std::string& text) {
  const auto isContinuation = [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
  };
  const auto lead = std::find_if_not(text.rbegin(), text.rend(), isContinuation);
  const bool startsCharacter = lead != text.rend() && static_cast<unsigned char>(*lead) >= 0xC0U;
  text.erase(startsCharacter ? lead.base() - 1 : lead.base(), text.end());
}

/// Reads to the end of file, or to the deadline. What does not fit is read all the same, so that
/// the child can go on.
std::string readToEnd(const FileDescriptor& descriptor, Clock::time_point deadline) {
  std::string output;
  bool truncated = false;
  std::array<char, 65536> buffer;
  while (waitUntilReadable(descriptor, deadline)) {
    const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
    if (count == 0) {
      break;
    }
    if (count == -1) {
      if (errno == EINTR) {
        continue;
      }
      throw std::system_error(errno, std::generic_category(), "read");
    }
    const auto read = static_cast<std::size_t>(count);
    const std::size_t kept = std::min(read, maximumChildOutputBytes - output.size());
    output.append(buffer.data(), kept);
    truncated = truncated || kept < read;
  }
  if (truncated) {
    trimPartialCharacter(output);
  }
  return output;
}

}  // namespace

ChildProcessResult runChildProcess(const std::string& executable,
                                   std::span<const std::string> arguments,
                                   std::chrono::duration<double> timeLimit) {
  Pipe pipe = makePipe();
  ChildProcess child(executable, arguments, pipe.writeEnd);
  pipe.writeEnd.close();

  const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(timeLimit);
  TimeoutFlag timeoutFlag;
  ChildProcessResult result;
  {
    const Watchdog watchdog(deadline, [&child, &timeoutFlag] {
      if (child.isRunning()) {
        timeoutFlag.set();
        child.kill();
      }
    });
    // In this order: a child blocks while the pipe is full, and would never exit.
    result.output = readToEnd(pipe.readEnd, deadline);
    child.waitUntilExit();
  }
  // The watchdog is gone: nothing can signal the identifier once reaping has freed it.
  result.terminationStatus = child.reap();
  result.timedOut = timeoutFlag.value();
  return result;
}

}  // namespace zephlin
