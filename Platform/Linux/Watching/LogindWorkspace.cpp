#include "Platform/Linux/Watching/LogindWorkspace.h"

#include <QMetaObject>
#include <QPointer>
#include <QString>
#include <QUuid>
#include <chrono>
#include <ctime>
#include <utility>

#include "Platform/Linux/Watching/EndableCallback.h"

namespace zephlin {

namespace {

/// How long the machine has slept since it was started (clock_gettime(2)).
std::chrono::nanoseconds timeAsleep() {
  timespec withSleep{};
  timespec withoutSleep{};
  ::clock_gettime(CLOCK_MONOTONIC, &withoutSleep);
  ::clock_gettime(CLOCK_BOOTTIME, &withSleep);
  return std::chrono::seconds(withSleep.tv_sec - withoutSleep.tv_sec) +
         std::chrono::nanoseconds(withSleep.tv_nsec - withoutSleep.tv_nsec);
}

}  // namespace

/// Receives logind's signal from listenOn() until it is destroyed.
class SleepListener final : public QObject, public Observation {
  Q_OBJECT

 public:
  explicit SleepListener(std::function<void()> didWake) : didWake_(std::move(didWake)) {}

  /// Calls back at once if the machine has slept since construction. The call may destroy this.
  void listenOn(QDBusConnection bus) {
    bus.connect("org.freedesktop.login1", "/org/freedesktop/login1",
                "org.freedesktop.login1.Manager", "PrepareForSleep", this,
                SLOT(prepareForSleep(bool)));
    // The two clocks are read one after the other, but no sleep is as short as that.
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

LogindWorkspace::~LogindWorkspace() {
  if (systemBus_) {
    QDBusConnection::disconnectFromBus(systemBus_->name());
  }
}

std::unique_ptr<Observation> LogindWorkspace::observeDidWake(std::function<void()> callback) {
  auto listener = std::make_unique<SleepListener>(std::move(callback));
  QMetaObject::invokeMethod(
      &context_,
      [this, listener = QPointer(listener.get())] {
        if (listener) {
          listener->listenOn(systemBus());
        }
      },
      Qt::QueuedConnection);
  return listener;
}

const QDBusConnection& LogindWorkspace::systemBus() {
  if (!systemBus_) {
    // Qt shares connections by name; this one is ours alone.
    systemBus_ =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QUuid::createUuid().toString());
  }
  return *systemBus_;
}

}  // namespace zephlin

#include "LogindWorkspace.moc"
