#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <string>

namespace zephlin {

/// The address of a Unix socket by its path. Throws RequestError if the path is empty, too long
/// for a socket or has a NUL in it.
class SocketAddress {
 public:
  explicit SocketAddress(const std::string& path);

  [[nodiscard]] const sockaddr* get() const;
  [[nodiscard]] socklen_t size() const { return sizeof(address_); }

 private:
  sockaddr_un address_{};
};

/// The system's text for an errno value, between brackets after a space: " (No such file …)".
std::string reason(int errorNumber);

}  // namespace zephlin
