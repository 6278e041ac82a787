#include "Platform/Linux/Watching/LogindWorkspace.h"

#include <QString>
#include <QUuid>
#include <utility>

#include "Platform/Linux/Watching/SleepListener.h"

namespace zephlin {

LogindWorkspace::LogindWorkspace()
    // Qt shares connections by their names; this one ends with us.
    : systemBus_(QDBusConnection::connectToBus(QDBusConnection::SystemBus,
                                               QUuid::createUuid().toString())) {}

LogindWorkspace::~LogindWorkspace() {
  QDBusConnection::disconnectFromBus(systemBus_.name());
}

std::unique_ptr<Observation> LogindWorkspace::observeDidWake(std::function<void()> callback) {
  return std::make_unique<SleepListener>(systemBus_, std::move(callback));
}

}  // namespace zephlin
