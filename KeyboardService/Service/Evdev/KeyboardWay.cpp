#include "KeyboardService/Service/Evdev/KeyboardWay.h"

#include <string_view>

namespace zephlin {
namespace {

/// A clone belongs to this seat, whatever the seat of its original (udev's ID_SEAT).
constexpr std::string_view seatOfClones = "seat0";

}  // namespace

KeyboardWay wayFor(const KeyboardNode& node, std::optional<std::chrono::milliseconds> delay) {
  if (!delay) {
    return KeyboardWay::LeftAlone;
  }
  if (delay->count() == 0 && node.hasCapsLockLed) {
    return KeyboardWay::Watched;
  }
  return node.description.seat == seatOfClones ? KeyboardWay::Grabbed : KeyboardWay::Impossible;
}

std::string whyImpossible(const KeyboardNode& node) {
  return "on " + node.description.seat + ", which cannot have a clone";
}

}  // namespace zephlin
