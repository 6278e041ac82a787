#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

#include "Platform/Simulated/SimulatedKeyboards.h"
#include "Platform/Simulated/VirtualLoop.h"
#include "ZephlinCore/ChildProcessRunner.h"

namespace zephlin {

/// How a run of the tool fails.
struct HidutilFault {
  /// It changes nothing, writes `text` and exits with `status`.
  struct Exit {
    std::int32_t status = 1;
    std::string text;
  };
  /// It changes nothing and is killed at the time limit.
  struct Hang {};
  /// It does its work, and writes this instead of what it should.
  struct Output {
    std::string text;
  };
  /// It cannot be started.
  struct LaunchFailure {
    std::errc error = std::errc::no_such_file_or_directory;
  };
  using Kind = std::variant<Exit, Hang, Output, LaunchFailure>;
};

/// Some bytes that are not UTF-8.
std::string outputThatIsNotUtf8();
/// Some rows that no listing has.
std::string outputOfNonsenseRows();

enum class HidutilCallKind { Set, Get, Unknown };

/// One run of the tool.
struct HidutilCall {
  HidutilCallKind kind = HidutilCallKind::Unknown;
  /// The value of a set.
  std::optional<std::int64_t> value;
  /// Monotonic seconds; the end is absent while it runs.
  double start = 0;
  std::optional<double> end;
  bool onMainThread = false;
  /// Another run was under way when this one started.
  bool overlapped = false;
};

/// The tool behind /usr/bin/hidutil: understands what the engine asks, and nothing else. A run
/// takes virtual time, in which everything else goes on; a set takes effect at its end.
class SimulatedHidutil {
 public:
  SimulatedHidutil(VirtualLoop& loop, SimulatedKeyboards& keyboards)
      : loop_(loop), keyboards_(keyboards) {}

  ChildProcessResult run(const std::string& executable, std::span<const std::string> arguments,
                         std::chrono::duration<double> timeLimit);

  /// How long each run takes; 0.02 s at first.
  void setDuration(double seconds) { duration_ = ticksFromSeconds(seconds); }
  /// Fails so many runs that start from now on, or all until `clearFaults`.
  void failSets(HidutilFault::Kind fault, std::optional<int> times = std::nullopt);
  void failGets(HidutilFault::Kind fault, std::optional<int> times = std::nullopt);
  void clearFaults();

  /// All runs, in the order in which they started.
  [[nodiscard]] const std::vector<HidutilCall>& calls() const { return calls_; }
  /// Only while no call runs.
  void forgetCalls() { calls_.clear(); }
  /// The sets of this value among the calls.
  [[nodiscard]] std::size_t setsOf(std::int64_t value) const;
  [[nodiscard]] std::size_t gets() const;
  [[nodiscard]] std::size_t callsOnMainThread() const { return callsOnMainThread_; }
  [[nodiscard]] std::size_t overlappingCalls() const { return overlappingCalls_; }
  [[nodiscard]] std::size_t unknownCalls() const { return unknownCalls_; }
  [[nodiscard]] std::size_t runningCalls() const { return running_; }

  /// Called when a run starts, on the thread that runs it.
  std::function<void(const HidutilCall&)> onCallStarted;
  /// The same at its end; the result is null if the tool was not launched.
  std::function<void(const HidutilCall&, const ChildProcessResult*)> onCallEnded;

 private:
  struct Fault {
    HidutilFault::Kind kind;
    std::optional<int> timesLeft;
  };

  std::size_t begin(HidutilCall call);
  void end(std::size_t call, const ChildProcessResult* result);
  static std::optional<HidutilFault::Kind> take(std::optional<Fault>& fault);
  std::optional<HidutilFault::Kind> takeFault(HidutilCallKind kind);
  ChildProcessResult perform(const HidutilCall& call,
                             const std::optional<HidutilFault::Kind>& fault);

  VirtualLoop& loop_;
  SimulatedKeyboards& keyboards_;
  VirtualTicks duration_ = ticksFromSeconds(0.02);
  std::optional<Fault> setFault_;
  std::optional<Fault> getFault_;
  std::vector<HidutilCall> calls_;
  std::size_t running_ = 0;
  std::size_t callsOnMainThread_ = 0;
  std::size_t overlappingCalls_ = 0;
  std::size_t unknownCalls_ = 0;
};

}  // namespace zephlin
