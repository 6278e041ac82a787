#include "Platform/Simulated/SimulatedKeyboards.h"

#include <algorithm>
#include <cstdio>

namespace zephlin {

namespace {

/// Registry IDs are hexadecimal numbers far from 0.
std::string registryID(SimulatedKeyboards::Number number) {
  constexpr unsigned long long first = 0x100000a00;
  char text[24];
  std::snprintf(text, sizeof text, "%llx", first + number);
  return text;
}

}  // namespace

SimulatedKeyboards::Number SimulatedKeyboards::add(bool isStubborn) {
  keyboards_.emplace(next_, SimulatedKeyboard{std::nullopt, isStubborn});
  return next_++;
}

bool SimulatedKeyboards::remove(Number number) {
  return keyboards_.erase(number) > 0;
}

bool SimulatedKeyboards::allHave(std::optional<std::int64_t> value) const {
  return std::all_of(keyboards_.begin(), keyboards_.end(),
                     [&value](const auto& keyboard) { return keyboard.second.value == value; });
}

void SimulatedKeyboards::setAll(std::int64_t value) {
  for (auto& [number, keyboard] : keyboards_) {
    if (!keyboard.isStubborn) {
      keyboard.value = value;
    }
  }
}

std::string SimulatedKeyboards::listing() const {
  std::string text = "RegistryID    Key                     Value\n";
  for (const auto& [number, keyboard] : keyboards_) {
    text += registryID(number) + "     CapsLockDelayOverride   " +
            (keyboard.value ? std::to_string(*keyboard.value) : "(null)") + "\n";
  }
  return text;
}

}  // namespace zephlin
