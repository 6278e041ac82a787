#include "Tests/Unit/Linux/Watching/Support/QtLoop.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

namespace zephlin::test {

using namespace std::chrono_literals;

bool eventually(const std::function<bool()>& condition) {
  QElapsedTimer elapsed;
  elapsed.start();
  while (!condition()) {
    if (elapsed.hasExpired(30s / 1ms)) {
      return false;
    }
    runLoopFor(1ms);
  }
  return true;
}

void runLoopFor(std::chrono::milliseconds duration) {
  QEventLoop loop;
  QTimer::singleShot(duration, &loop, &QEventLoop::quit);
  loop.exec();
}

}  // namespace zephlin::test
