#pragma once

#include <QString>
#include <QWidget>

namespace zephlin {

/// The right to bring the next window to the front, as a launcher or a panel hands it over: an
/// xdg-activation token under Wayland, a startup id under X11. It can be used once, within a few
/// seconds. Under X11 and on GNOME the busy cursor goes at once, as not every start opens a window.
/// Empty does nothing. Main thread, with a QApplication.
void setActivationToken(const QString& token);

/// What the launcher of this process left in the environment, or an empty text. No longer there
/// afterwards, for the processes that this one starts and for Qt. To be called before other threads
/// run.
QString takeActivationTokenFromEnvironment();

/// Shows the window, restored if it was minimised, in front of the others and with the keyboard's
/// focus, as far as the desktop lets it. Only for windows that the user asked for. Main thread.
void comeToFront(QWidget& window);

}  // namespace zephlin
