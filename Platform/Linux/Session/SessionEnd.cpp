#include "Platform/Linux/Session/SessionEnd.h"

#include <QGuiApplication>
#include <QSessionManager>

namespace zephlin {

void takeNoPartInSessions() {
  const auto decline = [](QSessionManager& manager) {
    manager.setRestartHint(QSessionManager::RestartNever);
  };
  QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, qGuiApp, decline,
                   Qt::DirectConnection);
  QObject::connect(qGuiApp, &QGuiApplication::saveStateRequest, qGuiApp, decline,
                   Qt::DirectConnection);
}

}  // namespace zephlin
