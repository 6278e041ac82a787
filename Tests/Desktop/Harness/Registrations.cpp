#include "Tests/Desktop/Harness/Registrations.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <stdexcept>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {

Registrations::Registrations(PrivateBus& sessionBus) {
  sessionBus.connection().connect("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                                  "org.kde.StatusNotifierWatcher", "StatusNotifierItemRegistered",
                                  this, SLOT(itemRegistered(QString)));
}

double Registrations::waitForNext() {
  lastAt_ = 0;
  QTimer timeout;
  timeout.setSingleShot(true);
  timeout.start(std::chrono::minutes(1));
  while (lastAt_ == 0) {
    if (!timeout.isActive()) {
      throw std::runtime_error("waited in vain for a tray item");
    }
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return lastAt_;
}

void Registrations::itemRegistered(const QString& /*item*/) {
  lastAt_ = monotonicSeconds();
}

}  // namespace zephlin::test
