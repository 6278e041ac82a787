#pragma once

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>

#include "Base/FileDescriptor.h"
#include "Platform/SystemLog.h"

namespace zephlin {

class InstanceObject;

/// Makes this process the user's one running instance of Zephlin for as long as it lives, or hands
/// over to the one that runs. A lock of the kernel's decides which one that is (instanceLockPath);
/// the session bus only carries the message (org.freedesktop.Application, as
/// desktop entries with D-Bus activation have it).
///
/// Where there is no runtime directory there is no lock, and every process is the instance. Main
/// thread, one in a process, with a QCoreApplication.
class RunningInstance {
 public:
  /// `onActivate` is called from the event loop, once for each start that was handed over. The log
  /// outlives the instance.
  RunningInstance(SystemLog& log, std::function<void()> onActivate);
  RunningInstance(const RunningInstance&) = delete;
  RunningInstance& operator=(const RunningInstance&) = delete;
  ~RunningInstance();

  /// True if this process is the instance now. Otherwise the running one was asked to come
  /// forward; if it could not be reached within a few seconds, that is logged. Once.
  [[nodiscard]] bool becomeTheInstance();

 private:
  /// Takes the lock, or finds out who has it.
  std::optional<pid_t> otherHolder();
  void answerOnTheBus();

  SystemLog& log_;
  FileDescriptor lockFile_;
  std::unique_ptr<InstanceObject> object_;
};

}  // namespace zephlin
