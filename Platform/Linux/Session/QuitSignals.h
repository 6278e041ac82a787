#pragma once

#include <QSocketNotifier>
#include <csignal>
#include <functional>
#include <map>

#include "Base/FileDescriptor.h"

namespace zephlin {

/// Makes SIGTERM, SIGINT and SIGHUP ask for an orderly end, each time one arrives, while it lives.
/// One that the process was started to ignore (nohup, a shell's background) stays ignored.
///
/// The signals are caught, not blocked: a mask is inherited by children and threads, a handler is
/// not (signal(7)), so child processes meet the signals as ever. One at a time. Main thread.
class QuitSignals {
 public:
  /// `quit` is called from the event loop, and once the loop runs for what came before. Throws
  /// std::system_error when descriptors have run out.
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

}  // namespace zephlin
