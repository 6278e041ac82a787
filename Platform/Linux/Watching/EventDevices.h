#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <variant>

#include "Platform/HidDevices.h"
#include "Platform/Linux/Watching/EventKind.h"

namespace zephlin {

/// Delivers the values of one kind of event of every keyboard whose event device the user may
/// read, also of those that appear later. Where none can be read at first: EACCES if a permission
/// was missing, otherwise ENOENT. Main thread.
std::variant<std::unique_ptr<Observation>, std::int32_t> openEventDevices(
    EventKind kind, std::function<void(int value)> callback);

}  // namespace zephlin
