#pragma once

#include <QWidget>

namespace zephlin {

/// Gives the window a title bar with a button to close it, if Qt decorates it. Qt does so under
/// Wayland where the compositor draws no frames, such as GNOME's, and its bar has buttons to
/// minimise and maximise the window, whatever its flags say (Qt 6.4). To be called when the window
/// has just been shown; it has a layout. Main thread.
void replaceDecorationOfQt(QWidget& window);

}  // namespace zephlin
