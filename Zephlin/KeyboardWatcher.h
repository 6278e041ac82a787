#pragma once

#include <functional>
#include <memory>

#include "Platform/Platform.h"

namespace zephlin {

/// Tells when the override has to be applied again: a device has appeared, the machine has woken,
/// or five minutes have passed. It does not know what applying means. Main thread.
class KeyboardWatcher : public std::enable_shared_from_this<KeyboardWatcher> {
 public:
  /// Starts nothing. The watcher is held by a std::shared_ptr; the platform outlives it.
  KeyboardWatcher(Platform& platform, std::function<void()> onNeedsReapply);
  KeyboardWatcher(const KeyboardWatcher&) = delete;
  KeyboardWatcher& operator=(const KeyboardWatcher&) = delete;
  ~KeyboardWatcher();

  /// Called once. Devices that are there already cause no call. A source that the platform does not
  /// have is left out without a word.
  void start();
  /// Ends all calls, but for one: the second call of a wake that has been told already still comes,
  /// unless the watcher is gone by then.
  void stop();

 private:
  void startDeviceMatchingNotification();
  void startWakeObserver();
  void startReconcileTimer();
  void scheduleReapply(Delay delay);
  void didWake();
  /// What calls `onNeedsReapply_` if the watcher is still there.
  std::function<void()> weakReapply();

  Platform& platform_;
  std::function<void()> onNeedsReapply_;
  std::unique_ptr<Observation> deviceObservation_;
  std::shared_ptr<WorkItem> debounceWorkItem_;
  std::unique_ptr<Observation> wakeObserver_;
  std::unique_ptr<Timer> reconcileTimer_;
};

}  // namespace zephlin
