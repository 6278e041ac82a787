#pragma once

#include <string>

#include "Platform/Linux/Session/DesktopEntry.h"

namespace zephlin {

/// Whether the desktop starts what the entry names (Desktop Application Autostart,
/// and the key by which GNOME and its relatives switch an entry off).
enum class AutostartState {
  /// The entry is none: it has no command.
  Invalid,
  Enabled,
  /// It is not to be started, on this desktop or at all.
  SwitchedOff
};

/// `currentDesktop` is what XDG_CURRENT_DESKTOP says: names with colons between them.
AutostartState autostartState(const DesktopEntry& entry, const std::string& currentDesktop);

}  // namespace zephlin
