#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <utility>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {

/// The socket's directory. It is created if absent, and then removed again at the end unless
/// something else is in it.
class SocketDirectory {
 public:
  /// Creates at most the last level. Throws RequestError.
  explicit SocketDirectory(const std::string& socketPath);
  SocketDirectory(const SocketDirectory&) = delete;
  SocketDirectory& operator=(const SocketDirectory&) = delete;
  ~SocketDirectory();

 private:
  std::string path_;
  bool made_ = false;
};

/// A lock file beside a socket, held by one process at a time, which may bind the socket's path. It
/// is removed at the end.
class InstanceLock {
 public:
  /// Throws RequestError if another process holds the lock, or if the file cannot be created.
  explicit InstanceLock(const std::string& socketPath);
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;
  ~InstanceLock();

 private:
  [[nodiscard]] bool isAtPath() const;

  std::string path_;
  FileDescriptor file_;
};

/// A Unix stream socket that this process has bound to a path, where everyone may connect. It is
/// removed at the end, with everything that was created for it.
class BoundSocket {
 public:
  /// Replaces a socket that nobody listens at, but nothing else. Throws RequestError.
  explicit BoundSocket(const std::string& path);
  BoundSocket(const BoundSocket&) = delete;
  BoundSocket& operator=(const BoundSocket&) = delete;
  ~BoundSocket();

  /// The listening descriptor; it does not block. To be taken once.
  FileDescriptor takeDescriptor() { return std::move(descriptor_); }

 private:
  std::string path_;
  SocketAddress address_;
  SocketDirectory directory_;
  InstanceLock lock_;
  FileDescriptor descriptor_;
  dev_t device_ = 0;
  ino_t inode_ = 0;
};

/// The listening socket that systemd has passed to this process, made non-blocking; nothing if the
/// process was started by other means. Throws RequestError unless it is one Unix stream socket.
std::optional<FileDescriptor> takeActivationSocket();

/// The path that a Unix socket is bound to, for the log.
std::string boundPath(const FileDescriptor& socket);

}  // namespace zephlin
