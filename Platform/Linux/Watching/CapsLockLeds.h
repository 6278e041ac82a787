#pragma once

#include <string>

namespace zephlin {

/// Whether a keyboard's Caps Lock light is on, by the files "<device>::capslock/brightness" of the
/// folder of light devices (Documentation/input/input.rst and leds/leds-class.rst of Linux). What
/// cannot be read counts as off. Does not wait.
bool isAnyCapsLockLedOn(const std::string& ledFolder);

}  // namespace zephlin
