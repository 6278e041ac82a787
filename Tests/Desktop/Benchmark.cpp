// What the application costs beside an empty one of the same kind. Prints figures; no test.

#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "Tests/Desktop/Harness/App.h"
#include "Tests/Desktop/Harness/PrivateMachine.h"
#include "Tests/Desktop/Harness/ProcessFigures.h"
#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

const std::vector<std::string> zephlin{"/usr/bin/Zephlin"};
const std::vector<std::string> emptyTray{EMPTY_TRAY_PROGRAM};

void pass(double seconds) {
  const double until = monotonicSeconds() + seconds;
  waitUntil("time to pass", [&] { return monotonicSeconds() > until; });
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// From the start until a host knows the item, in seconds.
double startUpTime(Desktop& desktop, const std::vector<std::string>& command) {
  const std::string home = desktop.makeHome();
  const double startedAt = monotonicSeconds();
  App app(desktop, {.home = home, .command = command});
  app.item();
  return monotonicSeconds() - startedAt;
}

void measureStartUp(Desktop& desktop) {
  std::vector<double> ours;
  std::vector<double> theirs;
  for (int round = 0; round < 15; ++round) {
    ours.push_back(startUpTime(desktop, zephlin));
    theirs.push_back(startUpTime(desktop, emptyTray));
  }
  std::printf("time until the icon is there   %.0f ms, empty application %.0f ms, ratio %.2f\n",
              1000 * median(ours), 1000 * median(theirs), median(ours) / median(theirs));
}

void measureIdling(Desktop& desktop) {
  App empty(desktop, {.command = emptyTray});
  App app(desktop);
  empty.item();
  app.waitForStatusLine("On. Every tap registers instantly");
  pass(5);
  const MemoryFigures ours = memoryOf(app.program().id());
  const MemoryFigures theirs = memoryOf(empty.program().id());
  std::printf("idle, resident memory          %ld KiB, empty application %ld KiB, ratio %.2f\n",
              ours.residentSet, theirs.residentSet,
              static_cast<double>(ours.residentSet) / static_cast<double>(theirs.residentSet));
  std::printf(
      "idle, proportional memory      %ld KiB, empty application %ld KiB, ratio %.2f\n",
      ours.proportionalSet, theirs.proportionalSet,
      static_cast<double>(ours.proportionalSet) / static_cast<double>(theirs.proportionalSet));
  const long before = wakeUpsOf(app.program().id());
  const long emptyBefore = wakeUpsOf(empty.program().id());
  pass(60);
  std::printf("wake-ups in an idle minute     %ld, empty application %ld\n",
              wakeUpsOf(app.program().id()) - before,
              wakeUpsOf(empty.program().id()) - emptyBefore);
}

/// Does the work a few times, so that what is made once is there, and then `times` more.
template <typename Work>
void measureGrowth(const App& app, const char* what, int times, const Work& work) {
  for (int warmUp = 0; warmUp < 50; ++warmUp) {
    work();
  }
  const long before = memoryOf(app.program().id()).residentSet;
  for (int round = 0; round < times; ++round) {
    work();
  }
  std::printf("growth, %-22s %ld KiB\n", what, memoryOf(app.program().id()).residentSet - before);
}

void measureGrowth(Desktop& desktop) {
  App app(desktop);
  app.waitForStatusLine("On. Every tap registers instantly");
  measureGrowth(app, "1000 menu openings", 1000, [&] {
    app.menu().aboutToShow();
    app.menu().opened();
    app.menu().entries();
    app.menu().closed();
  });
  measureGrowth(app, "200 tap tests", 200, [&] {
    app.menu().choose("Tap Test…");
    desktop.screen().close(desktop.screen().waitForWindow("Tap Test"));
    desktop.screen().waitUntilNoWindow("Tap Test");
  });
}

void measure() {
  Desktop desktop;
  desktop.panel();
  measureStartUp(desktop);
  measureIdling(desktop);
  measureGrowth(desktop);
}

}  // namespace
}  // namespace zephlin::test

int main(int argc, char* argv[]) {
  zephlin::test::enterPrivateMachine({{"Zephlin", ZEPHLIN_PROGRAM},
                                      {"hidutil", OBSERVED_HIDUTIL_PROGRAM},
                                      {"zephlin-hidd", SERVICE_PROGRAM}});
  const QCoreApplication application(argc, argv);
  zephlin::test::measure();
  return 0;
}
