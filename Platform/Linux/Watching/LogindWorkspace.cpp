#include "Platform/Linux/Watching/LogindWorkspace.h"

#include <QMetaObject>
#include <QPointer>
#include <QString>
#include <QUuid>
#include <utility>

#include "Platform/Linux/Watching/SleepListener.h"

namespace zephlin {

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
    // Qt shares connections by their names; this one ends with us.
    systemBus_ =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QUuid::createUuid().toString());
  }
  return *systemBus_;
}

}  // namespace zephlin
