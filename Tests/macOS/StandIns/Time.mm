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

std::multimap<std::uint64_t, std::function<void()>>& pending() {
  static std::multimap<std::uint64_t, std::function<void()>> instance;
  return instance;
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
  postInModesAfter(delay, commonModes(), std::move(work));
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
