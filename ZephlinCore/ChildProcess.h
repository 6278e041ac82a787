#pragma once

#include <sys/types.h>

#include <cstdint>
#include <span>
#include <string>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// Owns one running child process. Destroying it kills and reaps the child, unless `reap` or other
/// code of the process already has reaped it.
///
/// The process identifier is the child's until it is reaped, so any thread may call `isRunning` and
/// `kill` until the owner calls `reap`; the owner ensures that order.
class ChildProcess {
 public:
  /// Launches `executable` with `output` as its standard output and standard error; see
  /// `runChildProcess` for what else the child gets. Throws std::system_error.
  ChildProcess(const std::string& executable, std::span<const std::string> arguments,
               const FileDescriptor& output);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  [[nodiscard]] bool isRunning() const;
  void kill() const;
  /// Blocks until the child has ended; does not reap it.
  void waitUntilExit() const;
  /// Blocks until the child has ended, and returns its termination status: the exit status, or the
  /// number of the signal that ended it. Called once. Throws std::system_error when other code of
  /// the process has reaped it.
  std::int32_t reap();

 private:
  pid_t processIdentifier_ = -1;
};

}  // namespace zephlin
