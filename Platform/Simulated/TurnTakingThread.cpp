#include "Platform/Simulated/TurnTakingThread.h"

#include <utility>

namespace zephlin {

TurnTakingThread::TurnTakingThread() : thread_([this] { run(); }) {}

TurnTakingThread::~TurnTakingThread() {
  ending_ = true;
  {
    const std::lock_guard lock(mutex_);
    turn_ = Turn::Threads;
  }
  turnChanged_.notify_one();
  thread_.join();
}

void TurnTakingThread::begin(std::function<void()> work) {
  work_ = std::move(work);
}

void TurnTakingThread::takeTurn() {
  passTo(Turn::Threads);
  if (failure_) {
    std::rethrow_exception(std::exchange(failure_, nullptr));
  }
}

void TurnTakingThread::yieldTurn() {
  passTo(Turn::Owners);
}

void TurnTakingThread::passTo(Turn other) {
  {
    const std::lock_guard lock(mutex_);
    turn_ = other;
  }
  turnChanged_.notify_one();
  waitFor(other == Turn::Owners ? Turn::Threads : Turn::Owners);
}

void TurnTakingThread::waitFor(Turn own) {
  std::unique_lock lock(mutex_);
  turnChanged_.wait(lock, [&] { return turn_ == own; });
}

void TurnTakingThread::run() {
  waitFor(Turn::Threads);
  while (!ending_) {
    try {
      work_();
    } catch (...) {
      failure_ = std::current_exception();
    }
    work_ = nullptr;
    yieldTurn();
  }
}

}  // namespace zephlin
