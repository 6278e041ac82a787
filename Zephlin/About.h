#pragma once

#include "Platform/Platform.h"

namespace zephlin {

/// The program's name in its menu and its About alert.
constexpr const char* productTitle = "Zephlin · Instant Caps Lock";
/// The status menu's switch, which the About text names.
constexpr const char* instantCapsLockTitle = "Instant Caps Lock";

/// Shows the About alert in front of all applications and returns when it was dismissed. Main
/// thread.
void runAboutAlert(Platform& platform);

}  // namespace zephlin
