#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Simulated/SimulatedHidutil.h"
#include "Platform/Simulated/VirtualLoop.h"

namespace zephlin {

/// What the application should do and show, written a second time and in other words than the
/// application's own: which runs of the tool it asks for, when and in which order, and what it
/// makes of their results. All times are exact.
class OverrideModel {
 public:
  struct Counts {
    int instant = 0;
    int normal = 0;
    int other = 0;
  };
  struct Record {
    bool isOK = false;
    double date = 0;
  };

  explicit OverrideModel(bool enabled) : isEnabled_(enabled) {}

  /// What happens to the application, at the time up to which the model was advanced.
  void launch();
  void destroy();
  void deviceAppeared();
  void woke();
  void reapplyClicked() { request(); }
  void setEnabled(bool enabled);
  void menuOpened();
  void setLateness(VirtualTicks lateness) { lateness_ = lateness; }

  /// Lets all come about that is due by then.
  void advanceTo(VirtualTicks now);

  /// Checks a run of the tool against what was asked for. Returns what is wrong, or nothing.
  std::string callStarted(const HidutilCall& call);
  void callEnded(const HidutilCall& call, const ChildProcessResult* result, double wallTime);

  [[nodiscard]] bool isAlive() const { return isAlive_; }
  [[nodiscard]] bool isEnabled() const { return isEnabled_; }
  [[nodiscard]] bool lastApplyFailed() const { return lastApplyFailed_; }
  [[nodiscard]] std::int64_t retryAttempts() const { return retryAttempts_; }
  [[nodiscard]] const std::optional<Counts>& status() const { return status_; }
  [[nodiscard]] const std::optional<Record>& record() const { return record_; }
  [[nodiscard]] std::size_t loggedFailures() const { return loggedFailures_; }
  /// Runs that were asked for and have not begun.
  [[nodiscard]] bool owesCalls() const { return !jobs_.empty(); }
  [[nodiscard]] std::string statusLine() const;
  [[nodiscard]] std::string symbol() const;
  [[nodiscard]] std::string toolTip() const;

 private:
  enum class Job { Apply, Restore, Read };
  struct Deadline {
    VirtualTicks time;
    bool isRetry;
  };
  /// A job whose runs have begun.
  struct Running {
    Job job;
    bool callFailed = false;
    bool isOrphan = false;
  };

  [[nodiscard]] VirtualTicks inSeconds(double seconds) const {
    return now_ + ticksFromSeconds(seconds) + lateness_;
  }
  void request();
  void finish(const Running& finished, const std::optional<Counts>& status, double wallTime);
  void finishApply(bool failed, double wallTime);

  VirtualTicks now_ = 0;
  VirtualTicks lateness_ = 0;
  bool isAlive_ = false;
  bool isEnabled_;
  bool lastApplyFailed_ = false;
  std::int64_t retryAttempts_ = 0;
  std::optional<Counts> status_;
  std::optional<Record> record_;
  std::size_t loggedFailures_ = 0;
  std::deque<Job> jobs_;
  std::optional<Running> running_;
  std::optional<VirtualTicks> debounced_;
  std::vector<Deadline> deadlines_;
  VirtualTicks reconcileNominal_ = 0;
  std::optional<VirtualTicks> reconcile_;
};

}  // namespace zephlin
