#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace zephlin::test {

/// Where the observed hidutil, in the tests' private /run, keeps its record and its orders.
inline const std::string hidutilRecordFile = "/run/observed-hidutil/runs";
inline const std::string hidutilFailureFile = "/run/observed-hidutil/failure";
inline const std::string hidutilHoldFile = "/run/observed-hidutil/hold";
inline const std::string hidutilHeldFile = "/run/observed-hidutil/held";

struct HidutilRun {
  double startedAt = 0;  ///< Seconds of CLOCK_MONOTONIC.
  bool sets = false;     ///< Whether it set a property; otherwise it read one.
};

/// The runs of /usr/bin/hidutil, and orders to those that follow. At the end all orders are taken
/// back.
class HidutilRuns {
 public:
  HidutilRuns() {
    std::filesystem::create_directories(std::filesystem::path(hidutilRecordFile).parent_path());
  }

  HidutilRuns(const HidutilRuns&) = delete;
  HidutilRuns& operator=(const HidutilRuns&) = delete;
  ~HidutilRuns() {
    recover();
    release();
  }

  [[nodiscard]] std::vector<HidutilRun> all() const {
    std::vector<HidutilRun> runs;
    std::ifstream record(hidutilRecordFile);
    for (HidutilRun run; record >> run.startedAt >> run.sets;) {
      runs.push_back(run);
    }
    return runs;
  }

  /// The ones that set a property, from this time on.
  [[nodiscard]] std::vector<HidutilRun> settingSince(double time) const {
    std::vector<HidutilRun> runs = all();
    std::erase_if(runs, [&](const HidutilRun& run) { return !run.sets || run.startedAt < time; });
    return runs;
  }

  /// Lets it print the text and exit with status 1.
  void fail(const std::string& text) const { std::ofstream(hidutilFailureFile) << text; }

  void recover() const { std::filesystem::remove(hidutilFailureFile); }

  /// Lets it wait, until it is released, before it does anything.
  void hold() const { std::ofstream{hidutilHoldFile}; }

  /// Whether a run has begun to wait. It may have started before the order.
  [[nodiscard]] bool isHeld() const { return std::filesystem::exists(hidutilHeldFile); }

  void release() const {
    std::filesystem::remove(hidutilHoldFile);
    std::filesystem::remove(hidutilHeldFile);
  }
};

}  // namespace zephlin::test
