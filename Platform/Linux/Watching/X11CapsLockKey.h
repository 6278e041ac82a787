#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <variant>

#include "Platform/Observation.h"

namespace zephlin {

/// Delivers 1 when the key at Caps Lock's place goes down on any keyboard of the X server and 0
/// when it comes up, whatever the key is mapped to and whichever window has the keyboard (XInput
/// 2.1, raw events). Repetitions of a held key are left out. On failure: ECONNREFUSED without an X
/// server, ENOSYS without the extensions XInput 2.1 and XKB, ENXIO without such a key, EACCES if
/// the server refuses to send its raw events. Main thread.
std::variant<std::unique_ptr<Observation>, std::int32_t> openX11CapsLockKey(
    std::function<void(int value)> callback);

}  // namespace zephlin
