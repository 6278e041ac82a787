#pragma once

#include <QByteArray>

namespace zephlin {

/// Tells GNOME that what it has started, or the choice from a menu that it has passed on, needs no
/// busy cursor any more. Without this the cursor stays for 15 seconds unless a window uses the
/// activation token. Does nothing under other compositors. Main thread, with a QApplication.
/// Protocol: gtk_shell1, as GTK uses it (gdk/wayland/protocol/gtk-shell.xml).
void endGnomeStartup(const QByteArray& activationToken);

}  // namespace zephlin
