#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zephlin {

/// Names one keyboard for as long as the service runs; never used again for another one.
enum class RegistryID : std::uint64_t {};

/// The form that listings print: lower-case hexadecimal without a prefix.
std::string toText(RegistryID registryID);

/// Reads exactly the form that listings print, and nothing else.
std::optional<RegistryID> registryIDFromText(std::string_view text);

}  // namespace zephlin
