#pragma once

namespace zephlin {

/// Whether a Wayland compositor or an X server answers where the environment says (WAYLAND_DISPLAY,
/// DISPLAY). Asks them both at most once and leaves no connection behind.
bool isDisplayReachable();

}  // namespace zephlin
