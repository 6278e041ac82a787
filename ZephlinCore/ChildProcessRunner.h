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
  /// What arrived of standard output and standard error, in one stream. Nothing is kept of more
  /// than `maximumChildOutputBytes`: a part would read like the whole.
  std::optional<std::string> output = std::string();
};

constexpr std::size_t maximumChildOutputBytes = std::size_t{256} << 20U;

/// Runs `executable` (PATH is not searched) and waits for it. `arguments` are what follows
/// argument 0, which is the path itself.
///
/// The child inherits standard input, the environment and the working directory, and nothing else:
/// no other descriptor, default signal dispositions, an empty signal mask. Its standard output and
/// standard error are one pipe. All of it is read, then the child is reaped; a child that is still
/// running after `timeLimit` is sent SIGKILL. Waiting for more to read ends at the limit too, in
/// case another process holds the pipe open. So the call blocks for `timeLimit` and a kill at most.
///
/// Throws std::system_error when the child cannot be launched, naming an executable that cannot be
/// run, and when it cannot be watched, be it that no thread can be had for the time limit or that
/// reading or waiting fails; the child is killed then. Any thread, any number at once; nothing of a
/// run is left when it returns or throws. Should the process ignore SIGCHLD, the disposition is set
/// back to the default for good: a process that ignores it never learns how its children ended.
///
/// This header is a seam: a program may link another body of it, in which keyboards are simulated.
ChildProcessResult runChildProcess(const std::string& executable,
                                   std::span<const std::string> arguments,
                                   std::chrono::duration<double> timeLimit);

}  // namespace zephlin
