#include "KeyboardService/Service/Clients/Turns.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace zephlin {

Turns::Turns(EventLoop& loop, std::function<Time()> worked)
    : timer_(loop.timer([this] { takeOne(); })),
      worked_(std::move(worked)),
      workedBefore_(worked_()) {}

Turns::Time Turns::processorTime() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

void Turns::add(Turn& turn) {
  if (rotation_.empty()) {
    setTimer();
  }
  auto& ofParty = waiting_[turn.party_];
  if (ofParty.empty()) {
    rotation_.push_back(turn.party_);
  }
  ofParty.push_back(&turn);
}

void Turns::remove(const Turn& turn) {
  const auto ofParty = waiting_.find(turn.party_);
  std::erase(ofParty->second, &turn);
  if (ofParty->second.empty()) {
    waiting_.erase(ofParty);
    std::erase(rotation_, turn.party_);
  }
}

Turn& Turns::next() {
  Turn& turn = *waiting_.at(rotation_.front()).front();
  remove(turn);
  // The others of the party wait behind the other parties.
  if (waiting_.contains(turn.party_)) {
    rotation_.pop_front();
    rotation_.push_back(turn.party_);
  }
  return turn;
}

void Turns::takeOne() {
  if (rotation_.empty()) {
    return;
  }
  Turn& turn = next();
  turn.requested_ = false;
  // A copy, as the turn may be destroyed within.
  const std::function<void()> callback = turn.callback_;
  callback();
  rest();
  if (!rotation_.empty()) {
    setTimer();
  }
}

/// Of the time since the last rest, the thread has idled for some, and still has to for the rest.
void Turns::rest() {
  const Time worked = worked_();
  const Time now = std::chrono::steady_clock::now().time_since_epoch();
  restsUntil_ = std::max(restsUntil_ + 2 * (worked - workedBefore_), now);
  workedBefore_ = worked;
}

void Turns::setTimer() {
  timer_.setTime(std::chrono::ceil<std::chrono::microseconds>(restsUntil_));
}

Turn::Turn(Turns& turns, Turns::Party party, std::function<void()> callback)
    : turns_(turns), party_(party), callback_(std::move(callback)) {}

Turn::~Turn() {
  if (requested_) {
    turns_.remove(*this);
  }
}

void Turn::request() {
  if (!requested_) {
    requested_ = true;
    turns_.add(*this);
  }
}

}  // namespace zephlin
