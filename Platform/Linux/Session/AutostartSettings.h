#pragma once

#include <QString>

namespace zephlin {

/// Starts the desktop's own program for what starts at login: the first one for any of the
/// desktop's names (XDG_CURRENT_DESKTOP, with colons between them) that PATH has. It runs on when
/// this process ends. False where none could be started.
bool openAutostartSettings(const QString& currentDesktop);

}  // namespace zephlin
