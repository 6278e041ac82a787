#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <tuple>
#include <vector>

#include "Platform/Simulated/TurnTakingThread.h"

namespace zephlin {

/// Nanoseconds of the virtual monotonic clock, which starts at 0.
using VirtualTicks = std::int64_t;

constexpr VirtualTicks virtualTicksPerSecond = 1'000'000'000;

inline VirtualTicks ticksFromSeconds(double seconds) {
  return std::llround(seconds * static_cast<double>(virtualTicksPerSecond));
}

inline double secondsFromTicks(VirtualTicks ticks) {
  return static_cast<double>(ticks) / static_cast<double>(virtualTicksPerSecond);
}

/// An event loop under a virtual clock. Events run one at a time, ordered by (deadline, sequence);
/// time jumps from one to the next. The thread that pumps the loop is the main thread. Work in the
/// background takes turns with it, so that exactly one of all threads runs at any moment and a
/// history is always the same.
///
/// Pumping is allowed from within an event, as a modal alert does it.
class VirtualLoop {
 public:
  /// Where an event runs, which matters while the main thread is blocked.
  enum class Lane { Main, Background };

  struct EventId {
    VirtualTicks deadline = 0;
    std::uint64_t sequence = 0;
    bool operator<(const EventId& other) const {
      return std::tie(deadline, sequence) < std::tie(other.deadline, other.sequence);
    }
  };

  VirtualLoop() = default;
  VirtualLoop(const VirtualLoop&) = delete;
  VirtualLoop& operator=(const VirtualLoop&) = delete;
  ~VirtualLoop();

  [[nodiscard]] VirtualTicks now() const { return now_; }
  [[nodiscard]] bool isOnMainThread() const { return current_ == nullptr; }

  /// A deadline that has passed already counts as now, behind what is due. Any thread.
  EventId schedule(VirtualTicks deadline, Lane lane, std::function<void()> work);
  /// False if the event has run, runs or was cancelled. Any thread.
  bool cancel(const EventId& event);

  /// Runs the work on a background thread from now on, then `whenDone` on the main thread. To be
  /// called from an event of the background lane.
  void runInBackground(std::function<void()> work, std::function<void()> whenDone);
  /// Lets time pass for the calling thread, while all others go on. Any thread. Returns at once
  /// when the loop is shutting down.
  void blockFor(VirtualTicks duration);

  /// Runs the next event, whenever it is due. False if there is none. Main thread, as all below.
  bool step();
  /// Runs all that falls due up to and including that time, which is the time afterwards. (It is
  /// later if an event pumped the loop further.)
  void runUntil(VirtualTicks time);
  /// Runs all that is due now, and what that makes due now.
  void runUntilIdleNow() { runUntil(now_); }
  [[nodiscard]] std::optional<VirtualTicks> nextDeadline() const;
  [[nodiscard]] std::size_t pendingEvents() const { return events_.size(); }

  /// Called on the main thread after each event and at the end of each pumping.
  void addTurnObserver(std::function<void()> observer) {
    turnObservers_.push_back(std::move(observer));
  }

  /// Drops all events and lets blocked work run to its end.
  void shutDown();
  [[nodiscard]] bool isShuttingDown() const { return shuttingDown_; }

 private:
  struct Event {
    Lane lane = Lane::Main;
    std::function<void()> work;
  };
  struct Background {
    TurnTakingThread thread;
    std::function<void()> whenDone;
  };
  using Events = std::map<EventId, Event>;

  Background& idleBackground();
  void letRun(Background& background);
  void run(Events::iterator event);
  void finishTurn();
  void blockMainThreadUntil(VirtualTicks end);
  void blockBackgroundUntil(VirtualTicks end);

  VirtualTicks now_ = 0;
  /// Up to which time a background thread may let time pass by itself, if nothing is due before.
  VirtualTicks horizon_ = 0;
  std::uint64_t nextSequence_ = 0;
  Events events_;
  std::vector<std::unique_ptr<Background>> backgrounds_;
  Background* current_ = nullptr;
  std::vector<std::function<void()>> turnObservers_;
  bool shuttingDown_ = false;
};

}  // namespace zephlin
