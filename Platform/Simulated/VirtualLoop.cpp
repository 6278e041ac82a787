#include "Platform/Simulated/VirtualLoop.h"

#include <algorithm>
#include <utility>

namespace zephlin {

namespace {

/// Gives a variable another value for a while.
class Temporarily {
 public:
  Temporarily(VirtualTicks& variable, VirtualTicks value)
      : variable_(variable), before_(std::exchange(variable, value)) {}
  Temporarily(const Temporarily&) = delete;
  Temporarily& operator=(const Temporarily&) = delete;
  ~Temporarily() { variable_ = before_; }

 private:
  VirtualTicks& variable_;
  VirtualTicks before_;
};

}  // namespace

VirtualLoop::~VirtualLoop() {
  shutDown();
}

VirtualLoop::EventId VirtualLoop::schedule(VirtualTicks deadline, Lane lane,
                                           std::function<void()> work) {
  const EventId id = {std::max(deadline, now_), nextSequence_++};
  if (!shuttingDown_) {
    events_.emplace(id, Event{lane, std::move(work)});
  }
  return id;
}

bool VirtualLoop::cancel(const EventId& event) {
  // Destroyed last, since what it holds may use the loop.
  const Events::node_type cancelled = events_.extract(event);
  return !cancelled.empty();
}

VirtualLoop::Background& VirtualLoop::idleBackground() {
  for (const auto& background : backgrounds_) {
    if (background->thread.isIdle()) {
      return *background;
    }
  }
  return *backgrounds_.emplace_back(std::make_unique<Background>());
}

void VirtualLoop::runInBackground(std::function<void()> work, std::function<void()> whenDone) {
  Background& background = idleBackground();
  background.thread.begin(std::move(work));
  background.whenDone = std::move(whenDone);
  letRun(background);
}

void VirtualLoop::letRun(Background& background) {
  current_ = &background;
  try {
    background.thread.takeTurn();
  } catch (...) {
    current_ = nullptr;
    throw;
  }
  current_ = nullptr;
  if (background.thread.isIdle()) {
    std::exchange(background.whenDone, nullptr)();
  }
}

void VirtualLoop::blockFor(VirtualTicks duration) {
  if (shuttingDown_) {
    return;
  }
  const VirtualTicks end = now_ + std::max<VirtualTicks>(duration, 0);
  if (isOnMainThread()) {
    blockMainThreadUntil(end);
  } else {
    blockBackgroundUntil(end);
  }
}

void VirtualLoop::blockMainThreadUntil(VirtualTicks end) {
  const Temporarily horizon(horizon_, end);
  while (true) {
    const auto event = std::find_if(events_.begin(), events_.end(), [](const auto& candidate) {
      return candidate.second.lane == Lane::Background;
    });
    if (event == events_.end() || event->first.deadline > end) {
      break;
    }
    run(event);
  }
  now_ = std::max(now_, end);
}

void VirtualLoop::blockBackgroundUntil(VirtualTicks end) {
  const bool nothingIsDueBefore = events_.empty() || events_.begin()->first.deadline > end;
  if (nothingIsDueBefore && end <= horizon_) {
    now_ = end;  // Saves two changes of the thread.
    return;
  }
  Background& self = *current_;
  schedule(end, Lane::Background, [this, &self] { letRun(self); });
  self.thread.yieldTurn();
}

bool VirtualLoop::step() {
  if (events_.empty()) {
    finishTurn();
    return false;
  }
  const auto event = events_.begin();
  const Temporarily horizon(horizon_, std::max(now_, event->first.deadline));
  run(event);
  return true;
}

void VirtualLoop::runUntil(VirtualTicks time) {
  const Temporarily horizon(horizon_, time);
  while (!events_.empty() && events_.begin()->first.deadline <= time) {
    run(events_.begin());
  }
  now_ = std::max(now_, time);
  finishTurn();
}

void VirtualLoop::run(Events::iterator event) {
  const Events::node_type node = events_.extract(event);
  now_ = std::max(now_, node.key().deadline);
  node.mapped().work();
  finishTurn();
}

void VirtualLoop::finishTurn() {
  for (const auto& observer : turnObservers_) {
    observer();
  }
}

std::optional<VirtualTicks> VirtualLoop::nextDeadline() const {
  if (events_.empty()) {
    return std::nullopt;
  }
  return events_.begin()->first.deadline;
}

void VirtualLoop::shutDown() {
  shuttingDown_ = true;
  for (const auto& background : backgrounds_) {
    while (!background->thread.isIdle()) {
      current_ = background.get();
      background->thread.takeTurn();
    }
    current_ = nullptr;
    background->whenDone = nullptr;
  }
  // What an event holds may use the loop while it is destroyed.
  Events dropped = std::exchange(events_, {});
  dropped.clear();
}

}  // namespace zephlin
