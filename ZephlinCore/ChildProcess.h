#pragma once

#include <sys/types.h>

#include <cstdint>
#include <span>
#include <string>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// Owns one running child process. Destroying it kills and reaps a child that was not reaped, be it
/// by `reap` or by other code of the process.
///
/// The process identifier is the child's for as long as it is unreaped, so `isRunning` and `kill`
/// may be called from any thread until `reap` is; the owner sees to that order.
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
  /// Blocks until the child has ended, and leaves it to be reaped.
  void waitUntilExit() const;
  /// Blocks until the child has ended, and takes its termination status: the exit status, or the
  /// number of the signal that ended it. Called once. Throws std::system_error when other code of
  /// the process has reaped it.
  std::int32_t reap();

 private:
  pid_t processIdentifier_ = -1;
};

}  // namespace zephlin
