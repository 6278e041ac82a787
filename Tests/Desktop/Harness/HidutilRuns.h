#pragma once

#include <string>
#include <vector>

namespace zephlin::test {

/// Where the observed hidutil, in the tests' private /run, keeps its record and its orders.
inline const std::string hidutilRecordFile = "/run/observed-hidutil/runs";
inline const std::string hidutilFailureFile = "/run/observed-hidutil/failure";
inline const std::string hidutilHoldFile = "/run/observed-hidutil/hold";

struct HidutilRun {
  double startedAt = 0;  ///< Seconds of CLOCK_MONOTONIC.
  bool sets = false;     ///< Whether it set a property; otherwise it read one.
};

/// The runs of /usr/bin/hidutil, and orders to those that follow. At the end all orders are taken
/// back.
class HidutilRuns {
 public:
  HidutilRuns();
  HidutilRuns(const HidutilRuns&) = delete;
  HidutilRuns& operator=(const HidutilRuns&) = delete;
  ~HidutilRuns();

  [[nodiscard]] std::vector<HidutilRun> all() const;
  /// The ones that set a property, from this time on.
  [[nodiscard]] std::vector<HidutilRun> settingSince(double time) const;

  /// Lets it print the text and exit with status 1.
  void fail(const std::string& text) const;
  void recover() const;
  /// Lets it wait, until it is released, before it does anything.
  void hold() const;
  void release() const;
};

}  // namespace zephlin::test
