#import "StandIns/Time.h"

#import <Foundation/Foundation.h>
#include <sys/time.h>
#include <time.h>

#include <cmath>
#include <map>
#include <optional>
#include <utility>

#import "StandIns/Actions.h"
#import "StandIns/RunLoop.h"

namespace standins {

namespace {

struct StandStill {
  std::uint64_t monotonic;
  double wall;
};

std::optional<StandStill>& standStill() {
  static std::optional<StandStill> instance;
  return instance;
}

using Deadlines = std::multimap<std::uint64_t, std::function<void()>>;

/// While time stands still.
Deadlines& pending() {
  static Deadlines instance;
  return instance;
}

/// In real time. Of timers that are overdue GNUstep fires the one that was added first, so each of
/// them runs the work that is due first.
Deadlines& inRealTime() {
  static Deadlines instance;
  return instance;
}

void runFirstInRealTime() {
  const auto first = inRealTime().extract(inRealTime().begin());
  first.mapped()();
}

std::uint64_t realNanoseconds() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000 +
         static_cast<std::uint64_t>(now.tv_nsec);
}

double realWallTime() {
  timeval now{};
  ::gettimeofday(&now, nullptr);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_usec) / 1e6;
}

}  // namespace

std::uint64_t monotonicNanoseconds() {
  return standStill() ? standStill()->monotonic : realNanoseconds();
}

double wallTimeSince1970() {
  return standStill() ? standStill()->wall : realWallTime();
}

void scheduleAt(std::uint64_t nanoseconds, std::function<void()> work) {
  if (standStill()) {
    pending().emplace(nanoseconds, std::move(work));
    return;
  }
  const auto now = monotonicNanoseconds();
  const double delay = nanoseconds > now ? static_cast<double>(nanoseconds - now) / 1e9 : 0;
  inRealTime().emplace(nanoseconds, std::move(work));
  postInModesAfter(delay, commonModes(), runFirstInRealTime);
}

void stopTime() {
  standStill() = StandStill{realNanoseconds(), std::floor(realWallTime())};
  pending().clear();
}

void resumeTime() {
  standStill().reset();
  pending().clear();
}

void advance(double seconds) {
  const auto from = *standStill();
  const auto step = static_cast<std::uint64_t>(std::llround(seconds * 1e9));
  const auto until = from.monotonic + step;
  settle();
  while (!pending().empty() && pending().begin()->first <= until) {
    const auto due = pending().extract(pending().begin());
    standStill()->wall += static_cast<double>(due.key() - standStill()->monotonic) / 1e9;
    standStill()->monotonic = due.key();
    due.mapped()();
    settle();
  }
  *standStill() = {until, from.wall + seconds};
}

}  // namespace standins
