#pragma once

#include <string>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// A lock file beside a socket, which one process at a time holds: whoever holds it may bind the
/// socket's path. It is removed when the holder is done.
class InstanceLock {
 public:
  /// Throws RequestError if another process holds the lock, or if the file cannot be made.
  explicit InstanceLock(const std::string& socketPath);
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;
  ~InstanceLock();

 private:
  [[nodiscard]] bool isAtPath() const;

  std::string path_;
  FileDescriptor file_;
};

}  // namespace zephlin
