#pragma once

#include <QObject>
#include <QString>

#include "Tests/Desktop/Harness/PrivateBus.h"

namespace zephlin::test {

/// Hears of status notifier items at the moment when a tray takes them.
class Registrations final : public QObject {
  Q_OBJECT

 public:
  explicit Registrations(PrivateBus& sessionBus);

  /// Waits for the next item; monotonic seconds. Throws std::runtime_error after a minute.
  double waitForNext();

 private:
  Q_SLOT void itemRegistered(const QString& item);

  double lastAt_ = 0;
};

}  // namespace zephlin::test
