#pragma once

#include <QTimer>
#include <functional>
#include <memory>

#include "Platform/Linux/StatusItem/XEmbedTray.h"

namespace zephlin {

class StatusNotifierHost;

enum class TrayKind { StatusNotifier, XEmbed };

/// Waits for a tray, and decides which kind of tray the process uses from then on. What one panel
/// or one version of Qt does differently at that point is worked around here.
///
/// Qt 6.4 asks once in a process for a StatusNotifier host, when the first QSystemTrayIcon is made,
/// and keeps to the answer; so there is one decision, and no QSystemTrayIcon before it. Panels such
/// as Xfce's offer both kinds, in no fixed order, and StatusNotifier is the better one. A
/// StatusNotifier host is therefore used as soon as it registers; an XEmbed tray only if none has
/// registered for a while after the tray came. Main thread.
class TrayFinder {
 public:
  /// `found` is called once, from the event loop.
  TrayFinder(const XEmbedTray& xembed, std::function<void(TrayKind)> found);
  TrayFinder(const TrayFinder&) = delete;
  TrayFinder& operator=(const TrayFinder&) = delete;
  ~TrayFinder();

  /// To be called when an XEmbed tray has come.
  void xembedTrayCame();

 private:
  void decide(TrayKind kind);

  const XEmbedTray& xembed_;
  std::function<void(TrayKind)> found_;
  QTimer timeout_;
  std::unique_ptr<StatusNotifierHost> host_;
};

}  // namespace zephlin
