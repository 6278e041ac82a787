#pragma once

#include <QDBusConnection>
#include <QObject>
#include <chrono>
#include <ctime>
#include <functional>
#include <utility>

#include "Platform/HidDevices.h"
#include "Platform/Linux/Watching/EndableCallback.h"

namespace zephlin {

/// How long the machine has slept since it was started (clock_gettime(2)).
inline std::chrono::nanoseconds timeAsleep() {
  timespec withSleep{};
  timespec withoutSleep{};
  ::clock_gettime(CLOCK_MONOTONIC, &withoutSleep);
  ::clock_gettime(CLOCK_BOOTTIME, &withSleep);
  return std::chrono::seconds(withSleep.tv_sec - withoutSleep.tv_sec) +
         std::chrono::nanoseconds(withSleep.tv_nsec - withoutSleep.tv_nsec);
}

/// Receives logind's signal once it listens, for as long as it lives.
class SleepListener final : public QObject, public Observation {
  Q_OBJECT

 public:
  explicit SleepListener(std::function<void()> didWake) : didWake_(std::move(didWake)) {}

  /// Calls back at once if the machine has slept since this was made. The call may destroy this.
  void listenOn(QDBusConnection bus) {
    bus.connect("org.freedesktop.login1", "/org/freedesktop/login1",
                "org.freedesktop.login1.Manager", "PrepareForSleep", this,
                SLOT(prepareForSleep(bool)));
    // No sleep is as short as the time between the readings of two clocks may be.
    if (timeAsleep() - asleepBefore_ > std::chrono::milliseconds(100)) {
      didWake_.call();
    }
  }

 private Q_SLOTS:
  void prepareForSleep(bool begins) {
    if (!begins) {
      didWake_.call();
    }
  }

 private:
  EndableCallback<> didWake_;
  std::chrono::nanoseconds asleepBefore_ = timeAsleep();
};

}  // namespace zephlin
