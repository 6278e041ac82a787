#include "Zephlin/KeyboardWatcher.h"

#include <utility>

namespace zephlin {

namespace {

using std::chrono::seconds;

constexpr seconds deviceAttachDelay{1};
constexpr seconds wakeDelay{2};
/// A keyboard may come back well after the wake, without being reported as a new device.
constexpr seconds wakeFollowUpDelay{10};
constexpr seconds reconcileInterval{300};
constexpr seconds reconcileTolerance{30};

}  // namespace

KeyboardWatcher::KeyboardWatcher(Platform& platform, std::function<void()> onNeedsReapply)
    : platform_(platform), onNeedsReapply_(std::move(onNeedsReapply)) {}

KeyboardWatcher::~KeyboardWatcher() {
  stop();
}

void KeyboardWatcher::start() {
  startDeviceMatchingNotification();
  startWakeObserver();
  startReconcileTimer();
}

void KeyboardWatcher::stop() {
  wakeObserver_.reset();
  reconcileTimer_.reset();
  if (debounceWorkItem_) {
    debounceWorkItem_->cancel();
  }
  deviceObservation_.reset();
}

void KeyboardWatcher::startDeviceMatchingNotification() {
  // The observation ends with the watcher, so it may hold a plain pointer.
  deviceObservation_ =
      platform_.hidDevices().observeDeviceAppeared([this] { scheduleReapply(deviceAttachDelay); });
}

void KeyboardWatcher::startWakeObserver() {
  wakeObserver_ = platform_.workspace().observeDidWake([weak = weak_from_this()] {
    if (const auto self = weak.lock()) {
      self->didWake();
    }
  });
}

void KeyboardWatcher::startReconcileTimer() {
  reconcileTimer_ =
      platform_.dispatch().scheduleTimer(reconcileInterval, reconcileTolerance, weakReapply());
}

void KeyboardWatcher::didWake() {
  scheduleReapply(wakeDelay);
  platform_.dispatch().mainQueue()->postAfter(wakeFollowUpDelay, weakReapply());
}

// A burst of triggers gives one call, `delay` after the last of them.
void KeyboardWatcher::scheduleReapply(Seconds delay) {
  if (debounceWorkItem_) {
    debounceWorkItem_->cancel();
  }
  debounceWorkItem_ = std::make_shared<WorkItem>(weakReapply());
  platform_.dispatch().mainQueue()->postAfter(delay,
                                              [item = debounceWorkItem_] { item->perform(); });
}

std::function<void()> KeyboardWatcher::weakReapply() {
  return [weak = weak_from_this()] {
    if (const auto self = weak.lock()) {
      self->onNeedsReapply_();
    }
  };
}

}  // namespace zephlin
