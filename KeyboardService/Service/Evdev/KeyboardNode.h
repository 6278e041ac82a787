#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "KeyboardService/Protocol/Keyboard.h"

namespace zephlin {

/// An event device of the kernel that is a keyboard, as udev knows it. It is not opened for that.
struct KeyboardNode {
  dev_t number = 0;
  std::string systemPath;  ///< In /sys; another device with the same number has another one.
  std::string path;        ///< In /dev.
  KeyboardDescription description;
};

/// The physical path of all clones begins like this, so that none is taken for a keyboard.
constexpr std::string_view clonePhysicalPath = "zephlin-hidd/";

/// Whether the bitmap of key codes, as sysfs prints it (words in hexadecimal, the highest first),
/// has Caps Lock and all letters. Buttons and remote controls are keyboards for the kernel too.
bool hasCapsLockAndLetters(std::string_view keyBitmap);

/// The name of a bus of linux/input.h, or "Other".
std::string busName(unsigned bus);

}  // namespace zephlin
