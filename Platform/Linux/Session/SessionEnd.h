#pragma once

#include <QSocketNotifier>
#include <csignal>
#include <functional>
#include <map>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// Makes SIGTERM, SIGINT and SIGHUP ask for an orderly end, each time one arrives, while it lives.
/// A signal that the process was started to ignore (nohup, a shell's background) stays ignored.
///
/// The signals are caught, not blocked: children and threads inherit a mask, but not a handler
/// (signal(7)), so child processes react to the signals as usual. One at a time. Main thread.
class QuitSignals {
 public:
  /// `quit` is called from the event loop, also for signals that arrived before the loop ran.
  /// Throws std::system_error when descriptors have run out.
  explicit QuitSignals(std::function<void()> quit);
  QuitSignals(const QuitSignals&) = delete;
  QuitSignals& operator=(const QuitSignals&) = delete;
  ~QuitSignals();

 private:
  static void handle(int signal);
  void readSignals() const;

  Pipe pipe_;
  QSocketNotifier notifier_;
  std::map<int, struct sigaction> previous_;
};

/// Tells the session manager (XSMP) at the session's end that nothing needs saving, and not to
/// start the application again with the next session: the login service does that. Main thread,
/// once, with a QGuiApplication.
void takeNoPartInSessions();

}  // namespace zephlin
