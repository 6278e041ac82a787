#pragma once

#include <sys/types.h>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <optional>

#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

class Turn;

/// Has the clients' work done in small pieces, one a turn. Users take turns, and so do the
/// connections of a user, so that nobody gets more by opening more of them. The thread rests for at
/// least half of the time: only the loop's other sources are called back then.
class Turns {
 public:
  /// Who shares turns: a user, or those clients that have not been accepted yet.
  using Party = std::optional<uid_t>;

  using Time = std::chrono::nanoseconds;

  /// `worked` returns for how long the loop's thread has worked, from any start.
  explicit Turns(EventLoop& loop, std::function<Time()> worked = processorTime);

 private:
  friend Turn;

  static Time processorTime();

  void add(Turn& turn);
  void remove(const Turn& turn);
  Turn& next();
  void takeOne();
  void rest();
  void setTimer();

  EventSource timer_;
  std::function<Time()> worked_;
  Time workedBefore_;
  Time restsUntil_{};  ///< On the monotonic clock.
  std::map<Party, std::deque<Turn*>> waiting_;
  std::deque<Party> rotation_;  ///< The parties of `waiting_`, the next one first.
};

/// Somebody who works in turns. It must not outlive the `Turns`.
class Turn {
 public:
  /// May be destroyed within its callback.
  Turn(Turns& turns, Turns::Party party, std::function<void()> callback);
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn();

  /// Has the callback called once, from the loop, when it is this one's turn.
  void request();

  [[nodiscard]] bool isRequested() const { return requested_; }

 private:
  friend Turns;

  Turns& turns_;
  Turns::Party party_;
  std::function<void()> callback_;
  bool requested_ = false;
};

}  // namespace zephlin
