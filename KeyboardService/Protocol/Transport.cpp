#include "KeyboardService/Protocol/Transport.h"

#include <algorithm>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {

SocketAddress::SocketAddress(const std::string& path) {
  constexpr std::size_t longest = sizeof(address_.sun_path) - 1;
  if (path.empty() || path.size() > longest || path.find('\0') != std::string::npos) {
    throw RequestError("the socket path " + inQuotes(path) + " is not usable; give one of 1 to " +
                       std::to_string(longest) + " bytes with --socket");
  }
  address_.sun_family = AF_UNIX;
  std::copy(path.begin(), path.end(), std::begin(address_.sun_path));
}

const sockaddr* SocketAddress::get() const {
  return reinterpret_cast<const sockaddr*>(&address_);
}

LineSplitter::State LineSplitter::state() const {
  const std::string_view head = std::string_view(buffer_).substr(0, maximumLineBytes_ + 1);
  if (head.find('\n') != std::string_view::npos) {
    return State::HasLine;
  }
  return head.size() > maximumLineBytes_ ? State::LineTooLong : State::NeedsBytes;
}

std::string LineSplitter::takeLine() {
  const auto end = buffer_.find('\n');
  std::string line = buffer_.substr(0, end);
  buffer_.erase(0, end + 1);
  return line;
}

}  // namespace zephlin
