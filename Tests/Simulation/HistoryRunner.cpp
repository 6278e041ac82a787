#include "Tests/Simulation/HistoryRunner.h"

#include <string>
#include <vector>

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Simulation/HistoryActions.h"
#include "Tests/Simulation/HistoryChecker.h"
#include "Tests/Simulation/OverrideModel.h"

namespace zephlin {

namespace {

/// An odd time, so that runs of the tool do not end at the instants at which something else
/// happens. What happens first of two things at once is not what is tested here.
constexpr double callDuration = 0.0203007;

class HistoryRunner {
 public:
  explicit HistoryRunner(const History& history) : history_(history) {
    desktop_.hidutil().setDuration(callDuration);
  }

  void run() {
    actions_.perform("launch");
    scheduleEvent(0);
    const std::int64_t end = history_.empty() ? 0 : history_.back().milliseconds;
    desktop_.runUntil(static_cast<double>(end) / 1000 + 1);
    letFaultsEnd();
    desktop_.runFor(longerThanReconciling);
    if (model_.isEnabled()) {
      checker_.checkSettled();
    }
    chooseAndSettle(1);
    chooseAndSettle(2);
    chooseAndSettle(3);
    actions_.perform("destroy");
    desktop_.runFor(longerThanReconciling);
  }

 private:
  static constexpr double longerThanReconciling = 400;
  static constexpr double longerThanRetrying = 60;

  /// Each event has its own microsecond, for the same reason.
  [[nodiscard]] VirtualTicks timeOf(std::size_t event) const {
    constexpr VirtualTicks perMillisecond = 1'000'000;
    return history_[event].milliseconds * perMillisecond +
           static_cast<VirtualTicks>(event % 997 + 1) * 1000;
  }

  /// Events are the loop's, so that they go on while an alert is modal.
  void scheduleEvent(std::size_t event) {
    if (event < history_.size()) {
      desktop_.loop().schedule(timeOf(event), VirtualLoop::Lane::Main, [this, event] {
        scheduleEvent(event + 1);
        actions_.perform(history_[event].action);
      });
    }
  }

  void letFaultsEnd() {
    // What hangs, and an alert's reader, take their time.
    desktop_.runFor(longerThanRetrying);
    for (const char* action : {"clear-faults", "late 0", "close-menu", "launch"}) {
      actions_.perform(action);
    }
    std::vector<SimulatedKeyboards::Number> stubborn;
    for (const auto& [number, keyboard] : desktop_.keyboards().all()) {
      if (keyboard.isStubborn) {
        stubborn.push_back(number);
      }
    }
    for (const auto number : stubborn) {
      desktop_.unplugKeyboard(number);
    }
  }

  /// Users change their mind this often, faster than the tool runs.
  void chooseAndSettle(int times) {
    for (int i = 0; i < times; ++i) {
      actions_.perform("open-menu");
      actions_.perform("click Instant Caps Lock");
    }
    desktop_.runFor(longerThanRetrying);
    checker_.checkSettled();
  }

  const History& history_;
  SimulatedDesktop desktop_;
  OverrideModel model_{true};
  HistoryChecker checker_{desktop_, model_};
  HistoryActions actions_{desktop_, model_, checker_};
};

}  // namespace

std::optional<Violation> runHistory(const History& history) {
  try {
    HistoryRunner(history).run();
  } catch (const ViolationFound& found) {
    return found.violation;
  }
  return std::nullopt;
}

}  // namespace zephlin
