#include "KeyboardService/Protocol/SocketAddress.h"

#include <algorithm>
#include <system_error>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/PrintableText.h"

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

std::string reason(int errorNumber) {
  return " (" + std::generic_category().message(errorNumber) + ")";
}

}  // namespace zephlin
