#pragma once

#include <functional>
#include <memory>

#include "Platform/Platform.h"

namespace zephlin {

/// Calls back when the override has to be applied again: a device has appeared, the machine has
/// woken, or five minutes have passed. It does not know what applying means. Main thread.
class KeyboardWatcher : public std::enable_shared_from_this<KeyboardWatcher> {
 public:
  /// Starts nothing. Must be held by a std::shared_ptr; the platform must outlive it.
  KeyboardWatcher(Platform& platform, std::function<void()> onNeedsReapply);
  KeyboardWatcher(const KeyboardWatcher&) = delete;
  KeyboardWatcher& operator=(const KeyboardWatcher&) = delete;
  ~KeyboardWatcher();

  /// Called once. Devices that are already there cause no call. A source that the platform does not
  /// have is silently left out.
  void start();
  /// Ends all calls except the second one after a wake that has already happened: that one still
  /// comes if the watcher exists by then.
  void stop();

 private:
  void startDeviceMatchingNotification();
  void startWakeObserver();
  void startReconcileTimer();
  void scheduleReapply(Seconds delay);
  void didWake();
  /// A function that calls `onNeedsReapply_` if the watcher still exists.
  std::function<void()> weakReapply();

  Platform& platform_;
  std::function<void()> onNeedsReapply_;
  std::unique_ptr<Observation> deviceObservation_;
  std::shared_ptr<WorkItem> debounceWorkItem_;
  std::unique_ptr<Observation> wakeObserver_;
  std::unique_ptr<Timer> reconcileTimer_;
};

}  // namespace zephlin
