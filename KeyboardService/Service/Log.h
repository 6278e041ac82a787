#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

/// Takes one line, without line feed, for the service's log. What is typed is never logged.
using Log = std::function<void(const std::string& line)>;

/// Writes a line to standard error as zephlin-hidd's. The line is lost if nobody reads: a stalled
/// log reader must not stall the clients.
void logToStandardError(const std::string& line);

/// Passes lines on to a log, but only so many for one cause, such as a user who keeps making
/// requests: after a burst, a line every now and then says how many were left out.
class LimitedLog {
 public:
  struct Limits {
    std::size_t burst = 20;
    std::chrono::milliseconds timeBetweenLines{1000};
  };

  LimitedLog(EventLoop& loop, Log log, Limits limits);
  LimitedLog(EventLoop& loop, Log log) : LimitedLog(loop, std::move(log), Limits{}) {}

  /// A line that is not limited, unless within `during`.
  void write(const std::string& line);

  /// Every line that is written while the action runs has this cause, for example "requests of user
  /// 1000".
  void during(const std::string& cause, const std::function<void()>& action);

 private:
  using Clock = std::chrono::steady_clock;

  struct Cause {
    double lines = 0;  ///< How many may follow at once.
    Clock::time_point counted;
    std::size_t leftOut = 0;
    EventSource nextLine;
  };

  Cause& find(const std::string& name);
  void count(Cause& cause) const;
  void summarise(const std::string& name);

  EventLoop& loop_;
  Log log_;
  Limits limits_;
  std::optional<std::string> present_;
  std::map<std::string, Cause> causes_;
};

}  // namespace zephlin
