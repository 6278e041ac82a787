// What the application costs beside an empty one of the same kind. Prints figures; no test.

#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <vector>

#include "Tests/Desktop/Harness/App.h"
#include "Tests/Desktop/Harness/Waiting.h"
#include "Tests/Desktop/Harness/Xfce.h"
#include "Tests/Support/PrivateMachine.h"

namespace zephlin::test {
namespace {

const std::vector<std::string> zephlin{"/usr/bin/Zephlin"};
const std::vector<std::string> emptyTray{EMPTY_TRAY_PROGRAM};

void pass(double seconds) {
  const double until = monotonicSeconds() + seconds;
  waitUntil("time to pass", [&] { return monotonicSeconds() > until; });
}

/// The number behind a name in a file of lines with a name and a number.
long numberIn(const std::filesystem::path& file, const std::string& name) {
  std::ifstream stream(file);
  for (std::string word; stream >> word;) {
    long number = 0;
    if (word == name && stream >> number) {
      return number;
    }
    stream.clear();
    stream.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  return 0;
}

std::filesystem::path folderOf(pid_t process) {
  return "/proc/" + std::to_string(process);
}

/// What a process has in memory, in KiB (proc(5), smaps_rollup).
struct MemoryFigures {
  long residentSet = 0;
  long proportionalSet = 0;  ///< With its share of the pages that others have too.
};

MemoryFigures memoryOf(pid_t process) {
  const auto file = folderOf(process) / "smaps_rollup";
  return {numberIn(file, "Rss:"), numberIn(file, "Pss:")};
}

/// How often its threads have waited, and so been woken, since they began (proc(5), status).
long wakeUpsOf(pid_t process) {
  long sum = 0;
  for (const auto& thread : std::filesystem::directory_iterator(folderOf(process) / "task")) {
    sum += numberIn(thread.path() / "status", "voluntary_ctxt_switches:");
  }
  return sum;
}

/// Notes when a tray takes status notifier items.
class Registrations final : public QObject {
  Q_OBJECT

 public:
  explicit Registrations(BusConnection& sessionBus) {
    sessionBus.get().connect(trayWatcher, "/StatusNotifierWatcher", trayWatcher,
                             "StatusNotifierItemRegistered", this, SLOT(itemRegistered(QString)));
  }

  /// Waits for the next item; monotonic seconds. Throws std::runtime_error after a minute.
  double waitForNext() {
    lastAt_ = 0;
    waitUntil("a tray item", [this] { return lastAt_ != 0; });
    return lastAt_;
  }

 private:
  Q_SLOT void itemRegistered(const QString& /*item*/) { lastAt_ = monotonicSeconds(); }

  double lastAt_ = 0;
};

/// What was measured in turn of the application and of the empty one.
class Pairs {
 public:
  void add(double ours, double theirs) {
    ours_.push_back(ours);
    theirs_.push_back(theirs);
    ratios_.push_back(ours / theirs);
  }

  /// The medians, and the median and the quartiles of the ratios.
  void print(const char* what, const char* unit) const {
    std::printf("%-30s %.0f %s, empty application %.0f %s, ratio %.2f (%.2f to %.2f)\n", what,
                quantile(ours_, 2), unit, quantile(theirs_, 2), unit, quantile(ratios_, 2),
                quantile(ratios_, 1), quantile(ratios_, 3));
  }

 private:
  static double quantile(std::vector<double> values, std::size_t quarters) {
    std::sort(values.begin(), values.end());
    return values[(values.size() - 1) * quarters / 4];
  }

  std::vector<double> ours_;
  std::vector<double> theirs_;
  std::vector<double> ratios_;
};

/// From the start until the panel has taken the item, in milliseconds.
double startUpTime(Desktop& desktop, const std::vector<std::string>& command) {
  const std::string home = desktop.makeHome();
  Registrations registrations(desktop.sessionBus());
  const double startedAt = monotonicSeconds();
  const App app(desktop, {.home = home, .command = command});
  return 1000 * (registrations.waitForNext() - startedAt);
}

void measureStartUp(Desktop& desktop) {
  Pairs times;
  for (int round = 0; round < 41; ++round) {
    // The other way round each time: what the one leaves running is not always the other's burden.
    if (round % 2 == 0) {
      const double ours = startUpTime(desktop, zephlin);
      times.add(ours, startUpTime(desktop, emptyTray));
    } else {
      const double theirs = startUpTime(desktop, emptyTray);
      times.add(startUpTime(desktop, zephlin), theirs);
    }
  }
  times.print("time until the icon is there", "ms");
}

void measureMemory(Desktop& desktop) {
  Pairs resident;
  Pairs proportional;
  for (int round = 0; round < 9; ++round) {
    App empty(desktop, {.command = emptyTray});
    App app(desktop);
    empty.item();
    app.waitForStatusLine("On. Every tap registers instantly");
    pass(2);
    const MemoryFigures ours = memoryOf(app.program().id());
    const MemoryFigures theirs = memoryOf(empty.program().id());
    resident.add(static_cast<double>(ours.residentSet), static_cast<double>(theirs.residentSet));
    proportional.add(static_cast<double>(ours.proportionalSet),
                     static_cast<double>(theirs.proportionalSet));
  }
  resident.print("idle, resident memory", "KiB");
  proportional.print("idle, proportional memory", "KiB");
}

void measureWakeUps(Desktop& desktop) {
  App empty(desktop, {.command = emptyTray});
  App app(desktop);
  empty.item();
  app.waitForStatusLine("On. Every tap registers instantly");
  pass(5);
  const long before = wakeUpsOf(app.program().id());
  const long emptyBefore = wakeUpsOf(empty.program().id());
  pass(60);
  std::printf("wake-ups in an idle minute     %ld, empty application %ld\n",
              wakeUpsOf(app.program().id()) - before,
              wakeUpsOf(empty.program().id()) - emptyBefore);
}

/// Does the work so many times twice: first so that what is made once is there, with the memory for
/// the runs of hidutil that pile up meanwhile, and once more when these are done.
template <typename Work>
void measureGrowth(const App& app, const char* what, int times, const Work& work) {
  for (int warmUp = 0; warmUp < times; ++warmUp) {
    work();
  }
  pass(15);
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
    app.item().aboutToShow();
    app.item().opened();
    app.item().entries();
    app.item().closed();
  });
  measureGrowth(app, "200 tap tests", 200, [&] {
    app.item().choose("Tap Test…");
    desktop.screen().close(desktop.screen().waitForWindow("Tap Test"));
    desktop.screen().waitUntilNoWindow("Tap Test");
  });
}

void measure() {
  Desktop desktop(makeXfce);
  desktop.panel();
  measureStartUp(desktop);
  measureMemory(desktop);
  measureWakeUps(desktop);
  measureGrowth(desktop);
}

}  // namespace
}  // namespace zephlin::test

int main(int argc, char* argv[]) {
  zephlin::test::enterPrivateMachine(zephlin::test::Identity::Ordinary);
  zephlin::test::addPrograms({{"Zephlin", ZEPHLIN_PROGRAM},
                              {"hidutil", OBSERVED_HIDUTIL_PROGRAM},
                              {"zephlin-hidd", SERVICE_PROGRAM}});
  const QCoreApplication application(argc, argv);
  zephlin::test::measure();
  return 0;
}

#include "Benchmark.moc"
