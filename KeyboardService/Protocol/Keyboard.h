#pragma once

#include <cstdint>
#include <string>

#include "KeyboardService/Protocol/RegistryID.h"

namespace zephlin {

/// What a bus knows about a keyboard. The texts come from the device: any bytes.
struct KeyboardDescription {
  std::int64_t primaryUsagePage = 1;  ///< HID usage page; 1 is Generic Desktop.
  std::int64_t primaryUsage = 6;      ///< HID usage on that page; 6 is Keyboard.
  std::int64_t vendorID = 0;
  std::int64_t productID = 0;
  std::string product;
  std::string transport;  ///< The bus by name, such as "USB" or "Virtual".

  bool operator==(const KeyboardDescription&) const = default;
};

struct Keyboard {
  RegistryID registryID{};
  KeyboardDescription description;

  bool operator==(const Keyboard&) const = default;
};

}  // namespace zephlin
