#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace zephlin {

/// How a child process ended.
struct ChildProcessResult {
  /// The exit status, or the number of the signal that ended the child.
  std::int32_t terminationStatus = 0;
  /// The child still ran when the time was up, and was killed.
  bool timedOut = false;
  /// Standard output and standard error, in one stream. Nothing if that is more than
  /// `maximumChildOutputBytes`: a part could be mistaken for the whole.
  std::optional<std::string> output = std::string();
};

constexpr std::size_t maximumChildOutputBytes = std::size_t{256} << 20U;

/// Runs `executable` (PATH is not searched) and waits for it. `arguments` are what follows
/// argument 0, which is the path itself.
///
/// The child inherits standard input, the environment and the working directory, and nothing else:
/// no other descriptor, default signal dispositions, an empty signal mask. Its standard output and
/// standard error are one pipe. All of it is read, then the child is reaped; a child that is still
/// running after `timeLimit` is sent SIGKILL. Reading ends at the limit too, in case another
/// process holds the pipe open. So the call blocks for at most `timeLimit` and the time a kill
/// takes.
///
/// Throws std::system_error, which names the executable, when the child cannot be launched. Also
/// throws it, after killing the child, when no thread can be created for the time limit, or when
/// reading or waiting fails. Any thread, any number at once; nothing of a run is left when it
/// returns or throws. If the process ignores SIGCHLD, the disposition is set back to the default
/// for good: a process that ignores it never learns how its children ended.
///
/// This header is a seam: a program may link another body of it, in which keyboards are simulated.
ChildProcessResult runChildProcess(const std::string& executable,
                                   std::span<const std::string> arguments,
                                   std::chrono::duration<double> timeLimit);

}  // namespace zephlin
