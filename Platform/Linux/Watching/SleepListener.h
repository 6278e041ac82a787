#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>
#include <utility>

#include "Platform/HidDevices.h"
#include "Platform/Linux/Watching/EndableCallback.h"

namespace zephlin {

/// Receives logind's signal, for as long as it lives.
class SleepListener final : public QObject, public Observation {
  Q_OBJECT

 public:
  SleepListener(QDBusConnection bus, std::function<void()> didWake) : didWake_(std::move(didWake)) {
    bus.connect("org.freedesktop.login1", "/org/freedesktop/login1",
                "org.freedesktop.login1.Manager", "PrepareForSleep", this,
                SLOT(prepareForSleep(bool)));
  }

 private Q_SLOTS:
  void prepareForSleep(bool begins) {
    if (!begins) {
      didWake_.call();
    }
  }

 private:
  EndableCallback<> didWake_;
};

}  // namespace zephlin
