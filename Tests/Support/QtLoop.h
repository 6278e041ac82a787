#pragma once

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <functional>

namespace zephlin::test {

/// Runs Qt's event loop for this long.
inline void runLoopFor(std::chrono::milliseconds duration) {
  QEventLoop loop;
  QTimer::singleShot(duration, &loop, &QEventLoop::quit);
  loop.exec();
}

/// Runs Qt's event loop until the condition holds. False if it does not within a minute.
inline bool eventually(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(std::chrono::minutes(1));
  while (!condition()) {
    if (deadline.hasExpired()) {
      return false;
    }
    runLoopFor(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace zephlin::test
