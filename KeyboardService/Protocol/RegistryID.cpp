#include "KeyboardService/Protocol/RegistryID.h"

#include <array>
#include <charconv>

namespace zephlin {

std::string toText(RegistryID registryID) {
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                 static_cast<std::uint64_t>(registryID), 16);
  return {digits.data(), end.ptr};
}

std::optional<RegistryID> registryIDFromText(std::string_view text) {
  std::uint64_t number = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  const auto registryID = static_cast<RegistryID>(number);
  // Printing it again rules out capitals, leading zeros, signs and trailing characters.
  if (end.ec != std::errc{} || toText(registryID) != text) {
    return std::nullopt;
  }
  return registryID;
}

}  // namespace zephlin
