#pragma once

#include <mutex>

#include "Base/FileDescriptor.h"
#include "Platform/SystemLog.h"

namespace zephlin {

/// Writes each entry to standard error and to syslog(3), as "Zephlin" with the facility user.
///
/// An entry is one write of at most `maximumBytes`: a longer one is cut. Lines behind its first are
/// indented, so none of them looks like an entry; other control characters become '?'. Standard
/// error may be closed, broken or full; what it does not take is left out there.
class LinuxSystemLog final : public SystemLog {
 public:
  /// As much as a pipe takes in one piece (pipe(7), PIPE_BUF).
  static constexpr std::size_t maximumBytes = 4096;

  /// Standard error is the one that is open now.
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

}  // namespace zephlin
