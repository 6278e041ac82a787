#pragma once

#include <QTimer>
#include <functional>

#include "Platform/Linux/StatusItem/StatusNotifierHost.h"
#include "Platform/Linux/StatusItem/XEmbedTray.h"

namespace zephlin {

enum class TrayKind { StatusNotifier, XEmbed };

/// Waits for a tray, and decides which kind of tray the process uses from then on.
///
/// There is one decision only, since Qt 6.4 asks for a StatusNotifier host once in a process, when
/// the first QSystemTrayIcon is made, and keeps to the answer. So none is made before there is a
/// tray, and an XEmbed tray alone is not taken at its word: panels such as Xfce's offer both, in an
/// order that is not fixed, and the kind that is lost at that moment is the better one. A
/// StatusNotifier host is taken as soon as it registers; an XEmbed tray only if none has done so
/// for a while after the tray came. Main thread.
class TrayFinder {
 public:
  /// `found` is called once, from the event loop.
  TrayFinder(const XEmbedTray& xembed, std::function<void(TrayKind)> found);

  /// To be called when an XEmbed tray has come.
  void xembedTrayCame();

 private:
  void decide(TrayKind kind);

  const XEmbedTray& xembed_;
  std::function<void(TrayKind)> found_;
  QTimer timeout_;
  StatusNotifierHost host_;
};

}  // namespace zephlin
