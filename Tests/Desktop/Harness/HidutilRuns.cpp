#include "Tests/Desktop/Harness/HidutilRuns.h"

#include <filesystem>
#include <fstream>

namespace zephlin::test {

namespace files = std::filesystem;

HidutilRuns::HidutilRuns() {
  files::create_directories(files::path(hidutilRecordFile).parent_path());
}

HidutilRuns::~HidutilRuns() {
  recover();
  release();
}

std::vector<HidutilRun> HidutilRuns::all() const {
  std::vector<HidutilRun> runs;
  std::ifstream record(hidutilRecordFile);
  for (HidutilRun run; record >> run.startedAt >> run.sets;) {
    runs.push_back(run);
  }
  return runs;
}

std::vector<HidutilRun> HidutilRuns::settingSince(double time) const {
  std::vector<HidutilRun> runs = all();
  std::erase_if(runs, [&](const HidutilRun& run) { return !run.sets || run.startedAt < time; });
  return runs;
}

void HidutilRuns::fail(const std::string& text) const {
  std::ofstream(hidutilFailureFile) << text;
}

void HidutilRuns::recover() const {
  files::remove(hidutilFailureFile);
}

void HidutilRuns::hold() const {
  std::ofstream{hidutilHoldFile};
}

void HidutilRuns::release() const {
  files::remove(hidutilHoldFile);
}

}  // namespace zephlin::test
