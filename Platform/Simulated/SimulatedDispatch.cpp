#include "Platform/Simulated/SimulatedDispatch.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace zephlin {

namespace {

/// What a queue's events share with it, and what outlives it until the work is done.
struct QueueState {
  std::deque<std::function<void()>> work;
  bool isBusy = false;
};

class SimulatedSerialQueue final : public SerialQueue {
 public:
  SimulatedSerialQueue(VirtualLoop& loop, std::shared_ptr<QueueState> state,
                       std::shared_ptr<const std::string> liveRecord)
      : loop_(loop), state_(std::move(state)), liveRecord_(std::move(liveRecord)) {}

  void post(std::function<void()> work) override {
    state_->work.push_back(std::move(work));
    if (!state_->isBusy) {
      scheduleNext(loop_, state_);
    }
  }

 private:
  static void scheduleNext(VirtualLoop& loop, const std::shared_ptr<QueueState>& state) {
    state->isBusy = !state->work.empty();
    if (state->isBusy) {
      loop.schedule(loop.now(), VirtualLoop::Lane::Background,
                    [&loop, state] { runNext(loop, state); });
    }
  }

  static void runNext(VirtualLoop& loop, const std::shared_ptr<QueueState>& state) {
    std::function<void()> work = std::move(state->work.front());
    state->work.pop_front();
    loop.runInBackground(std::move(work), [&loop, state] { scheduleNext(loop, state); });
  }

  VirtualLoop& loop_;
  std::shared_ptr<QueueState> state_;
  std::shared_ptr<const std::string> liveRecord_;
};

/// Fires on a grid of intervals from the beginning, so that lateness does not add up.
struct TimerState {
  VirtualLoop& loop;
  SimulatedLateness& lateness;
  SimulatedTimerRecord record;
  VirtualTicks interval;
  VirtualTicks nominal;
  std::function<void()> tick;
  VirtualLoop::EventId pending;
  bool hasEnded = false;
};

void scheduleTick(const std::shared_ptr<TimerState>& state);

void fire(const std::shared_ptr<TimerState>& state) {
  // A tick that was missed is not made up for.
  const VirtualTicks missed = (state->loop.now() - state->nominal) / state->interval;
  state->nominal += missed * state->interval;
  scheduleTick(state);
  state->tick();
}

void scheduleTick(const std::shared_ptr<TimerState>& state) {
  state->nominal += state->interval;
  state->pending =
      state->loop.schedule(state->nominal + state->lateness.ofTimer(state->record.tolerance),
                           VirtualLoop::Lane::Main, [state] {
                             if (!state->hasEnded) {
                               fire(state);
                             }
                           });
}

class SimulatedTimer final : public Timer {
 public:
  SimulatedTimer(std::shared_ptr<TimerState> state,
                 std::shared_ptr<const SimulatedTimerRecord> liveRecord)
      : state_(std::move(state)), liveRecord_(std::move(liveRecord)) {
    scheduleTick(state_);
  }
  SimulatedTimer(const SimulatedTimer&) = delete;
  SimulatedTimer& operator=(const SimulatedTimer&) = delete;
  ~SimulatedTimer() override {
    state_->hasEnded = true;
    state_->loop.cancel(state_->pending);
  }

 private:
  std::shared_ptr<TimerState> state_;
  std::shared_ptr<const SimulatedTimerRecord> liveRecord_;
};

template <typename Record>
std::shared_ptr<const Record> remember(std::vector<std::weak_ptr<const Record>>& records,
                                       const Record& record) {
  std::erase_if(records, [](const auto& weak) { return weak.expired(); });
  auto live = std::make_shared<const Record>(record);
  records.push_back(live);
  return live;
}

template <typename Record>
std::vector<Record> liveOnes(const std::vector<std::weak_ptr<const Record>>& records) {
  std::vector<Record> live;
  for (const auto& weak : records) {
    if (const auto record = weak.lock()) {
      live.push_back(*record);
    }
  }
  return live;
}

}  // namespace

void SimulatedLateness::setExactly(Seconds delay) {
  exact_ = ticksFromSeconds(delay.count());
  maximumJitter_ = 0;
}

void SimulatedLateness::setAtRandom(Seconds maximum, std::uint64_t seed) {
  exact_ = 0;
  maximumJitter_ = ticksFromSeconds(maximum.count());
  random_.seed(seed);
}

VirtualTicks SimulatedLateness::ofDelayedWork() {
  if (maximumJitter_ == 0) {
    return exact_;
  }
  return static_cast<VirtualTicks>(random_() % static_cast<std::uint64_t>(maximumJitter_ + 1));
}

VirtualTicks SimulatedLateness::ofTimer(Seconds tolerance) {
  return ofDelayedWork() + ticksFromSeconds(tolerance.count() * shareOfTolerance_);
}

void SimulatedMainQueue::post(std::function<void()> work) {
  loop_->schedule(loop_->now(), VirtualLoop::Lane::Main, std::move(work));
}

void SimulatedMainQueue::postAfter(Seconds delay, std::function<void()> work) {
  const VirtualTicks wait = std::max<VirtualTicks>(ticksFromSeconds(delay.count()), 0);
  loop_->schedule(loop_->now() + wait + lateness.ofDelayedWork(), VirtualLoop::Lane::Main,
                  std::move(work));
}

SimulatedDispatch::SimulatedDispatch(const std::shared_ptr<VirtualLoop>& loop)
    : loop_(*loop), mainQueue_(std::make_shared<SimulatedMainQueue>(loop)) {}

std::unique_ptr<SerialQueue> SimulatedDispatch::makeSerialQueue(const std::string& label) {
  return std::make_unique<SimulatedSerialQueue>(loop_, std::make_shared<QueueState>(),
                                                remember(serialQueues_, label));
}

std::unique_ptr<Timer> SimulatedDispatch::scheduleTimer(Seconds interval, Seconds tolerance,
                                                        std::function<void()> tick) {
  const SimulatedTimerRecord record = {interval, tolerance};
  // As on other desktops, no interval means the smallest one.
  const VirtualTicks period = std::max<VirtualTicks>(ticksFromSeconds(interval.count()), 100'000);
  auto state = std::make_shared<TimerState>(
      TimerState{loop_, lateness(), record, period, loop_.now(), std::move(tick), {}, false});
  return std::make_unique<SimulatedTimer>(std::move(state), remember(timers_, record));
}

std::vector<SimulatedTimerRecord> SimulatedDispatch::liveTimers() const {
  return liveOnes(timers_);
}

std::vector<std::string> SimulatedDispatch::liveSerialQueues() const {
  return liveOnes(serialQueues_);
}

}  // namespace zephlin
