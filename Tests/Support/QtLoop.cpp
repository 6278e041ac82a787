#include "Tests/Support/QtLoop.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace zephlin::test {

bool eventually(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(std::chrono::minutes(1));
  while (!condition()) {
    if (deadline.hasExpired()) {
      return false;
    }
    runLoopFor(std::chrono::milliseconds(2));
  }
  return true;
}

void runLoopFor(std::chrono::milliseconds duration) {
  QEventLoop loop;
  QTimer::singleShot(duration, &loop, &QEventLoop::quit);
  loop.exec();
}

}  // namespace zephlin::test
