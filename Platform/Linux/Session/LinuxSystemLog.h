#pragma once

#include <QtGlobal>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

#include "Base/FileDescriptor.h"
#include "Platform/Services.h"

namespace zephlin {

/// Writes each entry to standard error and to syslog(3), as "Zephlin" with the facility user.
///
/// An entry is one write of at most `maximumBytes`: a longer one is cut. Lines after its first are
/// indented, so that none of them looks like an entry; other control characters become '?'.
/// Standard error may be closed, broken or full; what it does not take is dropped there.
class LinuxSystemLog final : public SystemLog {
 public:
  /// As much as a pipe takes in one piece (pipe(7), PIPE_BUF).
  static constexpr std::size_t maximumBytes = 4096;

  /// Writes to the standard error that is open now.
  LinuxSystemLog();
  LinuxSystemLog(const LinuxSystemLog&) = delete;
  LinuxSystemLog& operator=(const LinuxSystemLog&) = delete;
  ~LinuxSystemLog() override;

  void log(const std::string& text) override;

 private:
  void writeToStandardError(std::string_view line);

  std::mutex mutex_;
  FileDescriptor standardError_;
};

/// The text as a log entry of at most `maximumBytes`, without a line feed at its end: lines after
/// the first are indented, other control characters become '?', and "…" shows where it was cut.
std::string logEntry(std::string_view text, std::size_t maximumBytes);

/// Logs Qt's warnings while it lives. Losing the display is how a session ends: where Qt would end
/// the process with a failure, this ends it with success. One at a time.
class QtMessages {
 public:
  /// The log outlives this object.
  explicit QtMessages(SystemLog& log);
  QtMessages(const QtMessages&) = delete;
  QtMessages& operator=(const QtMessages&) = delete;
  ~QtMessages();

 private:
  static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message);

  QtMessageHandler previous_;
};

}  // namespace zephlin
