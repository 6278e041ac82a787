#include "KeyboardService/Service/Evdev/KeyboardNode.h"

#include <linux/input.h>

#include <charconv>
#include <limits>

namespace zephlin {
namespace {

struct KeyRange {
  std::size_t first;
  std::size_t last;
};

/// The rows of letters, whose codes follow one another, and Caps Lock.
constexpr KeyRange needed[] = {
    {KEY_Q, KEY_P}, {KEY_A, KEY_L}, {KEY_Z, KEY_M}, {KEY_CAPSLOCK, KEY_CAPSLOCK}};

bool hasBit(std::string_view bitmap, std::size_t bit) {
  constexpr std::size_t bitsInWord = std::numeric_limits<unsigned long>::digits;
  for (std::size_t skipped = bit / bitsInWord; skipped > 0; --skipped) {
    const auto space = bitmap.rfind(' ');
    if (space == std::string_view::npos) {
      return false;
    }
    bitmap = bitmap.substr(0, space);
  }
  const std::string_view word = bitmap.substr(bitmap.rfind(' ') + 1);
  unsigned long value = 0;
  std::from_chars(word.data(), word.data() + word.size(), value, 16);
  return (value >> bit % bitsInWord & 1U) != 0;
}

}  // namespace

bool hasCapsLockAndLetters(std::string_view keyBitmap) {
  for (const auto& [first, last] : needed) {
    for (std::size_t key = first; key <= last; ++key) {
      if (!hasBit(keyBitmap, key)) {
        return false;
      }
    }
  }
  return true;
}

std::string busName(unsigned bus) {
  switch (bus) {
    case BUS_USB:
      return "USB";
    case BUS_BLUETOOTH:
      return "Bluetooth";
    case BUS_I8042:
      return "PS/2";
    case BUS_I2C:
      return "I2C";
    case BUS_SPI:
      return "SPI";
    case BUS_HOST:
      return "Host";
    case BUS_VIRTUAL:
      return "Virtual";
    default:
      return "Other";
  }
}

}  // namespace zephlin
