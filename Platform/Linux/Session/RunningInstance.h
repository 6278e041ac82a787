#pragma once

#include <sys/types.h>

#include <QString>
#include <functional>
#include <memory>
#include <optional>

#include "Base/FileDescriptor.h"
#include "Platform/Services.h"

namespace zephlin {

/// How a running instance is reached on the session bus.
constexpr const char* instanceBusName = "com.quorvenel.zephlin";
constexpr const char* instanceBusPath = "/com/quorvenel/zephlin";
constexpr const char* instanceBusInterface = "org.freedesktop.Application";

class InstanceObject;

/// What a start asks of the running instance.
struct InstanceRequest {
  /// The name of an action of the application's launcher; empty to come forward.
  QString action{};
  /// May be empty (Windows/ActivationToken.h).
  QString activationToken{};
};

/// Makes this process the user's one running instance of Zephlin for as long as it lives, or hands
/// over to the one that runs. A file lock decides which one that is (instanceLockPath); the session
/// bus only carries the message (org.freedesktop.Application, as for desktop entries with D-Bus
/// activation).
///
/// Without a runtime directory there is no lock, and every process is the instance. Main thread,
/// one in a process, with a QCoreApplication.
class RunningInstance {
 public:
  /// `onRequest` is called from the event loop, once for each start that was handed over and for
  /// each request of a launcher. The log outlives the instance.
  RunningInstance(SystemLog& log, std::function<void(const InstanceRequest&)> onRequest);
  RunningInstance(const RunningInstance&) = delete;
  RunningInstance& operator=(const RunningInstance&) = delete;
  ~RunningInstance();

  /// True if this process is the instance now. Otherwise the running one got the request; a
  /// failure to reach it within a few seconds is logged. Called once.
  [[nodiscard]] bool becomeTheInstance(const InstanceRequest& request);

 private:
  /// Takes the lock, or returns who has it.
  std::optional<pid_t> otherHolder();
  void answerOnTheBus();

  SystemLog& log_;
  FileDescriptor lockFile_;
  std::unique_ptr<InstanceObject> object_;
};

}  // namespace zephlin
